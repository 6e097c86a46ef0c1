// The slices of a run with the weights of a trained machine over them.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "stats/thresholds.h"

#include <QDialog>
#include <memory>

class QtCortivoDoc;
class QtCortivoView;

namespace Ui {
class WeightsWindow;
}

/// A modeless window. Positive and negative weights are shown, of all maps or of one of them.
class WeightsWindow : public QDialog {
    Q_OBJECT

public:
    /// The thresholds, which are those of the documents, are not owned; the operator changes them
    /// here.
    WeightsWindow(OverlayThresholds& thresholds, QWidget* parent);
    ~WeightsWindow() override;

    /// Shows the maps of a document, which lives until leaveDocument() or another one comes.
    void showDocument(QtCortivoDoc& document);
    /// Lets go of the document, with all of its maps in use again, and hides the window.
    void leaveDocument();

private:
    void connectControls();
    void fillMaps();
    void chooseMap(int index);
    void refreshThresholds();
    void mapsChanged();

    OverlayThresholds& thresholds_;
    const std::unique_ptr<Ui::WeightsWindow> ui_;
    QtCortivoDoc* document_ = nullptr;
    QtCortivoView* view_ = nullptr;
};
