// The slices of a run with the weights of a trained model over them.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>
#include <memory>

class QtCortivoDoc;
class QtCortivoView;
class WeightMaps;

namespace Ui {
class WeightsWindow;
}

/// A modeless window. Positive and negative weights are shown, of all maps or of one of them.
class WeightsWindow : public QDialog {
    Q_OBJECT

public:
    /// `maps` are not owned.
    WeightsWindow(WeightMaps& maps, QWidget* parent);
    ~WeightsWindow() override;

    /// Takes the document with its maps, all of which are in use. False without any.
    [[nodiscard]] bool showMaps();
    /// Lets go of the document and hides the window.
    void leaveDocument();

private:
    void connectControls();
    void fillMaps();
    void chooseMap(int index);
    void refreshThresholds();
    void mapsChanged();

    WeightMaps& maps_;
    const std::unique_ptr<Ui::WeightsWindow> ui_;
    QtCortivoDoc* document_ = nullptr;
    QtCortivoView* view_ = nullptr;
};
