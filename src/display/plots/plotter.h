// The widget of all plots of curves and bars.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "display/plots/plot_canvas.h"
#include "display/plots/plot_content.h"

/// Curves or bars, with the zoom, the read-out and the saving of a PlotCanvas.
class Plotter : public PlotCanvas {
    Q_OBJECT

public:
    explicit Plotter(QWidget* parent = nullptr);

    /// A zoom that the operator chose stays.
    void setContent(PlotContent content);
    [[nodiscard]] const PlotContent& content() const { return content_; }
    /// The point of the curves under the pointer with its values, or the bar, and the intervals
    /// there.
    [[nodiscard]] QString readOutAt(QPoint position) const override;

protected:
    [[nodiscard]] PlotRanges wholeRanges() const override { return whole_; }
    [[nodiscard]] QSizeF leastWidths() const override;
    [[nodiscard]] PlotGeometry geometryIn(const QRectF& area,
                                          const PlotRanges& ranges) const override;
    void paintContent(QPainter& painter, const QRectF& area, const PlotRanges& ranges) override;
    void paintPointer(QPainter& painter, QPoint position) override;

private:
    /// What does not change from volume to volume, and where it is.
    struct Ground {
        QPixmap picture;
        PlotLayout layout;
        QRectF area;
        PlotRanges ranges;
        QFont font;
        double ratio = 0.0; ///< of device pixels; 0 for none
    };

    void renewGround(const QRectF& area, const PlotRanges& ranges, double ratio);

    PlotContent content_;
    PlotRanges whole_;
    Ground ground_;
};
