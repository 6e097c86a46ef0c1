// The area of the views and the buttons that switch between them.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "display/region_marks.h"
#include "run/loop/run_listeners.h"

#include <QFrame>

class AnatomicalView;
class QDockWidget;
class QMainWindow;
class QToolButton;
class QtCortivoView;
class RunSession;

enum class ShownCube;

/// The frame ImageView. Creates the views of new documents and deletes them with these. Slices and
/// sections show the same voxel: a click on the slices moves the cross of the sections, and this
/// marks its voxel on the slices.
class ViewPanel : public QFrame, public RunListener {
    Q_OBJECT

public:
    /// The frame of the buttons becomes a child of `parent` too.
    ViewPanel(RunSession& session, QWidget* parent);

    /// True when there are a document and its view.
    [[nodiscard]] bool documentShown() const;
    void refreshButtons();
    /// Repaints the visible view. It takes the keyboard focus unless `keepFocus`: the operator is
    /// using a control.
    void update(bool keepFocus);
    /// Brings the slices to the front.
    void showSlices();
    /// Brings the sections through this cube to the front; nothing when it isn't there.
    void showSections(ShownCube cube);
    /// The keyboard goes to the view that is visible.
    void focusView();
    void saveAsBMP();
    /// Opens the help file of the paradigm, if the settings name one.
    void showHelp();
    [[nodiscard]] RoiDisplayStyle roiDisplayStyle() const { return roiDisplayStyle_; }
    void setROIDisplayStyle(RoiDisplayStyle style);
    /// Docks a window below the views; the operator can make it float.
    void dock(QDockWidget& window);
    /// True when something was being dragged on a view; it is given up.
    bool cancelDrag();

    void documentsLeaving() override;
    void documentsArrived(QtCortivoDoc& functional) override;
    void runPrepared(QtCortivoDoc& functional) override;
    void regionsChanged(QtCortivoDoc& functional) override;

Q_SIGNALS:
    void slicesWanted();
    void volumeWanted();
    void anatomyWanted();

private:
    void createButtons(QWidget* parent);
    void createSlices(QtCortivoDoc& functional);
    void createSections(QtCortivoDoc& functional);
    void bringToFront(bool sections);
    [[nodiscard]] QWidget* visibleView() const;
    [[nodiscard]] int firstDockHeight() const;
    /// Passes on what the session has, and has the views repainted.
    void showCurrentState();

    RunSession& session_;
    QMainWindow* area_; ///< the views in its middle, docked windows around them
    bool dockSized_ = false;
    QtCortivoView* functionalView_ = nullptr;
    AnatomicalView* anatomicalView_ = nullptr;
    bool showsSections_ = false; ///< the operator's choice, also for the runs that follow
    RoiDisplayStyle roiDisplayStyle_ = RoiDisplayStyle::RectanglesAndMarkedVoxels;
    QToolButton* slices_ = nullptr;
    QToolButton* volume_ = nullptr;
    QToolButton* anatomy_ = nullptr;
    /// Buttons of views that don't exist yet.
    QToolButton* leftHemisphere_ = nullptr;
    QToolButton* rightHemisphere_ = nullptr;
};
