// The anatomical view of the main window: three sections through a cube with the maps over them.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "display/anatomical_picture.h"
#include "display/anatomical_read_out.h"
#include "display/overlay_legend.h"
#include "display/section_fields.h"
#include "display/section_sides.h"

#include <QWidget>

/// What the view shows. Nothing is owned, and all must live as long as the view.
struct AnatomicalViewSources {
    const Anatomy& anatomy;
    const QtCortivoDoc& run;
    const OverlayThresholds& thresholds;
    const RegisteredPluginMaps& pluginMaps; ///< may take the place of the contrasts
};

/// Shows the cube that the anatomy says, which it never changes itself: it tells what the operator
/// wants, and is told when that has happened. Composes the sections once for each change.
class AnatomicalView : public QWidget {
    Q_OBJECT

public:
    AnatomicalView(const AnatomicalViewSources& sources, QWidget* parent = nullptr);

    /// Switches the maps on or off; they are on at first.
    void setOverlayShown(bool shown);
    /// The volume whose samples are read out, or firstVolumeAsRead.
    void setVolumeReadOut(int volume);
    /// True when the mouse was dragging the cross or the window; it stays as it is now.
    bool cancelDrag();

    /// Where the sections lie.
    [[nodiscard]] SectionFields fields() const;
    /// The sections as they are composed; null images without a cube.
    [[nodiscard]] const SectionImages& sections();
    /// What stands in the fourth field.
    [[nodiscard]] std::vector<ReadOutLine> readOut() const;

    [[nodiscard]] QSize sizeHint() const override { return {700, 560}; }
    [[nodiscard]] QSize minimumSizeHint() const override { return {200, 160}; }

public Q_SLOTS:
    /// The cube, the cross, the window, the maps or the way in which they are shown have changed.
    void slotDocumentChanged();
    /// Saves sections and read-out at one pixel for each voxel in the file that the operator
    /// chooses, without blocking a run. A failure is reported.
    void slotSaveAsBMP();

Q_SIGNALS:
    /// The operator wants the cross at this voxel, which lies in the cube.
    void crossMoved(const CubeVoxel& voxel);
    /// The operator wants these intensities, 0 to 255, the first below the second, shown black and
    /// white.
    void windowChanged(int low, int high);

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    /// What the pressed button does.
    enum class MouseAction { None, Cross, Window };

    [[nodiscard]] const AnatomicalCube& cube() const { return sources_.anatomy.shownCube(); }
    [[nodiscard]] CubeVoxel cross() const;
    /// The maps over the run; empty when they are off.
    [[nodiscard]] ShownMaps overlay() const;
    void compose();
    [[nodiscard]] QRect legendArea() const;
    [[nodiscard]] QRectF room() const;
    [[nodiscard]] SectionFields fieldsIn(const QRectF& room, double pixelRatio) const;
    void paintFields(QPainter& painter, const SectionFields& fields) const;
    [[nodiscard]] QString toolTipAt(QPoint position) const;
    void moveCross(int columns, int rows, int sections);
    void dragWindow(QPointF position);

    AnatomicalViewSources sources_;
    SectionImages sections_;
    std::array<SectionSides, 3> sides_; ///< by SectionAxis
    OverlayLegend legend_;
    bool composed_ = false; ///< there are sections
    bool outdated_ = true;  ///< they are to be composed before they are drawn
    bool overlayShown_ = true;
    int readOutVolume_ = firstVolumeAsRead;

    SectionAxis active_ = SectionAxis::X; ///< that the keys move in
    MouseAction action_ = MouseAction::None;
    QPointF pressed_; ///< where the action began
    std::array<int, 2> windowAtPress_{};
};
