// The window around one plot.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "display/plots/plot_content.h"

#include <QDialog>

class Plotter;

/// A modeless window with a plot, and buttons for its zoom and for saving it. Its owner gives it
/// title, labels and curves.
class Plot2DDlg : public QDialog {
    Q_OBJECT

public:
    explicit Plot2DDlg(QWidget* parent = nullptr);

    void setTitle(const QString& title) { setWindowTitle(title); }
    void setLabels(const QString& x, const QString& y);
    /// What is plotted; labels that it doesn't have stay.
    void setContent(PlotContent content);
    [[nodiscard]] Plotter& plotter() { return *plotter_; }

public Q_SLOTS:
    /// Empties the plot and ends its zoom; title and labels stay.
    void init();
    void slotSaveAsBMP();

private:
    Plotter* const plotter_;
};
