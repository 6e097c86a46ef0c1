// The widget of all plots.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "display/plots/plot_content.h"

#include <QPixmap>
#include <QWidget>

/// Shows a plot from a backing store that is painted anew when the content, the size or the zoom
/// changes. Dragging a rectangle zooms in, the wheel zooms around the pointer, a double click goes
/// back; the values under the pointer are read out. Works by keys too: + and -, arrows to move,
/// Home for the whole plot.
class Plotter : public QWidget {
    Q_OBJECT

public:
    explicit Plotter(QWidget* parent = nullptr);

    /// A zoom that the operator chose stays.
    void setContent(PlotContent content);
    [[nodiscard]] const PlotContent& content() const { return content_; }
    /// The ranges that are shown now.
    [[nodiscard]] PlotRange shownX() const;
    [[nodiscard]] PlotRange shownY() const;
    /// The picture as it is shown, without the read-out under the pointer.
    [[nodiscard]] QPixmap picture();
    /// The read-out at a place of the widget; empty outside the plot.
    [[nodiscard]] QString readOutAt(QPoint position) const;

public Q_SLOTS:
    void zoomIn();
    void zoomOut();
    /// Saves the picture in the file that the operator chooses, without blocking a run.
    void slotSaveAsBMP();

private:
    PlotContent content_;
};
