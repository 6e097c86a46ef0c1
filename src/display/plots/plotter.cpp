// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/plots/plotter.h"

#include "display/plots/plot_colors.h"
#include "display/plots/plot_drawing.h"
#include "display/plots/plot_read_out.h"

#include <QPainter>
#include <cmath>

Plotter::Plotter(QWidget* parent) : PlotCanvas(parent) {}

void Plotter::setContent(PlotContent content) {
    // Only a range that followed from data is worth keeping.
    const std::optional<PlotRange> previous =
        content_.yRange ? std::nullopt : std::optional(whole_.y);
    if (!haveSameGround(content_, content))
        ground_.ratio = 0.0;
    content_ = std::move(content);
    whole_ = {wholeXRange(content_), wholeYRange(content_, previous)};
    contentChanged();
}

QSizeF Plotter::leastWidths() const {
    constexpr double leastShare = 1e-5;
    constexpr double leastPoints = 4; // fewer are no curve
    const double points = std::abs(content_.xStep) * leastPoints;
    return {content_.bars.empty() ? std::max(points, (whole_.x.to - whole_.x.from) * leastShare)
                                  : 0.0,
            (whole_.y.to - whole_.y.from) * leastShare};
}

PlotGeometry Plotter::geometryIn(const QRectF& area, const PlotRanges& ranges) const {
    return layOutPlot(area, content_, ranges, font()).geometry;
}

void Plotter::renewGround(const QRectF& area, const PlotRanges& ranges, double ratio) {
    if (ground_.area == area && ground_.ranges == ranges && ground_.font == font() &&
        ground_.ratio == ratio)
        return;
    ground_ = {QPixmap((area.size() * ratio).toSize()),
               layOutPlot(area, content_, ranges, font()),
               area,
               ranges,
               font(),
               ratio};
    ground_.picture.setDevicePixelRatio(ratio);
    QPainter painter(&ground_.picture);
    painter.translate(-area.topLeft());
    paintPlotGround(painter, area, content_, ground_.layout);
}

void Plotter::paintContent(QPainter& painter, const QRectF& area, const PlotRanges& ranges) {
    renewGround(area, ranges, painter.device()->devicePixelRatioF());
    painter.drawPixmap(area.topLeft(), ground_.picture);
    paintPlotValues(painter, content_, ground_.layout);
}

QString Plotter::readOutAt(QPoint position) const {
    const PlotGeometry geometry = geometryShown();
    if (!geometry.axes.contains(position) || (!hasData(content_) && content_.bands.empty()))
        return {};
    return readOut(content_, geometry.xAt(position.x()));
}

void Plotter::paintPointer(QPainter& painter, QPoint position) {
    if (!content_.bars.empty() || !hasData(content_))
        return;
    const PlotGeometry geometry = geometryShown();
    const double index = pointNearX(content_, geometry.xAt(position.x()));
    const double x = geometry.positionOfX(xOfPoint(content_, int(index)));
    painter.setPen(QPen(plotColors::quietText, 0, Qt::DotLine));
    painter.drawLine(QLineF(x, geometry.axes.top(), x, geometry.axes.bottom()));
    if (content_.stacked)
        return; // a bar is seen as it is
    painter.setClipRect(geometry.axes);
    for (const PlotCurve& curve : content_.curves) {
        if (!(index >= 0.0 && index < double(curve.values.size())) ||
            !std::isfinite(curve.values[size_t(index)]))
            continue;
        constexpr double half = 2.5;
        const double y = geometry.positionOfY(double(curve.values[size_t(index)]));
        painter.fillRect(QRectF(x - half, y - half, 2 * half, 2 * half),
                         readableColor(curve.color));
    }
}
