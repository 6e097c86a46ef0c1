// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/plots/plot_drawing.h"

#include "display/plots/curve_painting.h"
#include "display/plots/plot_colors.h"
#include "display/plots/stack_painting.h"

#include <QFontMetricsF>
#include <QPainter>
#include <algorithm>
#include <cmath>

namespace {

constexpr double bandOpacity = 0.32;
constexpr double gap = 4;

QColor mixedColor(const QColor& ground, const QColor& color, double opacity) {
    const auto mixed = [opacity](int below, int above) {
        return int(std::lround(below + opacity * (above - below)));
    };
    return {mixed(ground.red(), color.red()), mixed(ground.green(), color.green()),
            mixed(ground.blue(), color.blue())};
}

/// The columns of device pixels that are painted already.
class PixelColumns {
public:
    PixelColumns(const QRectF& area, double ratio)
        : left_(area.left()), ratio_(ratio),
          taken_(size_t(std::max(std::ceil(area.width() * ratio), 0.0)) + 1) {}

    /// Takes those of an area inside the whole one. False if one of them was taken before.
    bool take(const QRectF& area) {
        bool allFree = true;
        for (size_t i = columnAt(area.left()); i < columnAt(area.right()); ++i) {
            allFree = allFree && !taken_[i];
            taken_[i] = true;
        }
        return allFree;
    }

private:
    [[nodiscard]] size_t columnAt(double x) const {
        const double column = std::round((x - left_) * ratio_);
        return size_t(std::clamp(column, 0.0, double(taken_.size() - 1)));
    }

    double left_;
    double ratio_;
    std::vector<bool> taken_;
};

/// Paints one plot whose parts are placed already.
class PlotPainter {
public:
    PlotPainter(QPainter& painter, const PlotContent& content, const PlotLayout& layout)
        : painter_(painter), content_(content), layout_(layout), axes_(layout.geometry.axes) {}

    void paintGround();
    void paintValues();

private:
    void paintBands();
    void paintGrid();
    void paintLines();
    void paintLineText(const PlotLine& line, const QPointF& at);
    void paintCurve(const PlotCurve& curve);
    void paintCurveErrors(const PlotCurve& curve, int from, int to);
    void paintMark(const QPointF& at, PlotMarkShape shape, const QColor& color);
    void paintMarks(const PlotMarks& marks);
    void paintBars();
    void paintErrorBar(double x, double value, double error, double capHalf);
    void paintFrame();
    void paintNumbers();
    void paintBarNames();
    void paintLegendMark(const PlotLegendEntry& entry);
    void paintLegend();
    void paintLabels();
    void paintNote();
    void text(const QRectF& room, int alignment, const QString& text);
    [[nodiscard]] double xOf(double value) const { return layout_.geometry.positionOfX(value); }
    [[nodiscard]] double yOf(double value) const { return layout_.geometry.positionOfY(value); }
    [[nodiscard]] double barWidth() const;
    [[nodiscard]] QPointF place(const PlotCurve& curve, int index) const {
        return {xOf(xOfPoint(content_, index)), yOf(double(curve.values[size_t(index)]))};
    }

    QPainter& painter_;
    const PlotContent& content_;
    const PlotLayout& layout_;
    const QRectF axes_;
};

void PlotPainter::paintGround() {
    paintBands();
    if (content_.gridShown)
        paintGrid();
    if (hasAxes(content_))
        paintFrame();
    painter_.setFont(layout_.textFont);
    paintBarNames();
    paintLegend();
    paintLabels();
    painter_.setFont(layout_.numberFont);
    paintNumbers();
}

void PlotPainter::paintValues() {
    painter_.save();
    painter_.setClipRect(axes_);
    paintBars();
    if (content_.stacked)
        paintStack(painter_, content_, layout_.geometry);
    else
        for (const PlotCurve& curve : content_.curves)
            paintCurve(curve);
    for (const PlotMarks& marks : content_.marks)
        paintMarks(marks);
    painter_.restore();
    painter_.setFont(layout_.textFont);
    if (hasAxes(content_))
        paintLines();
    if (!content_.note.isEmpty() && !hasData(content_))
        paintNote();
}

/// Longer texts end in an ellipsis.
void PlotPainter::text(const QRectF& room, int alignment, const QString& text) {
    const QFontMetricsF metrics = painter_.fontMetrics();
    painter_.drawText(room, alignment | Qt::TextSingleLine,
                      metrics.elidedText(text, Qt::ElideRight, room.width()));
}

// Nothing but the background is below them, so most can be painted in their mixture with it, which
// is much faster than blending; only where they overlap each other they have to be blended.
void PlotPainter::paintBands() {
    const double ratio = painter_.device()->devicePixelRatioF();
    PixelColumns painted(axes_, ratio);
    for (const PlotBand& band : content_.bands) {
        if (!std::isfinite(band.from) || !std::isfinite(band.to))
            continue;
        const double from = std::max(xOf(std::min(band.from, band.to)), axes_.left());
        const double to = std::min(xOf(std::max(band.from, band.to)), axes_.right());
        if (from > axes_.right() || to < axes_.left())
            continue;
        const double width = std::max(to - from, 1.0); // a short interval can still be seen
        const QRectF area = QRectF(from, axes_.top(), width, axes_.height()) & axes_;
        QColor color = readableColor(band.color);
        if (painted.take(area))
            color = mixedColor(plotColors::background, color, bandOpacity);
        else
            color.setAlphaF(float(bandOpacity));
        painter_.fillRect(area, color);
    }
}

void PlotPainter::paintGrid() {
    painter_.setPen(QPen(plotColors::grid, 0));
    for (const PlotTick& tick : layout_.xTicks)
        painter_.drawLine(QLineF(xOf(tick.at), axes_.top(), xOf(tick.at), axes_.bottom()));
    for (const PlotTick& tick : layout_.yTicks) {
        painter_.setPen(QPen(tick.at == 0.0 ? plotColors::frame : plotColors::grid, 0));
        painter_.drawLine(QLineF(axes_.left(), yOf(tick.at), axes_.right(), yOf(tick.at)));
    }
}

void PlotPainter::paintLines() {
    for (const PlotLine& line : content_.lines) {
        const bool vertical = line.orientation == Qt::Vertical;
        const PlotRange& range = vertical ? layout_.geometry.x : layout_.geometry.y;
        if (!(line.at >= range.from && line.at <= range.to))
            continue;
        const double x = xOf(line.at);
        const double y = yOf(line.at);
        painter_.setPen(QPen(readableColor(line.color), 1));
        painter_.drawLine(vertical ? QLineF(x, axes_.top(), x, axes_.bottom())
                                   : QLineF(axes_.left(), y, axes_.right(), y));
        if (!line.text.isEmpty())
            paintLineText(line, vertical ? QPointF(x, axes_.top()) : QPointF(axes_.left(), y));
    }
}

/// Beside a vertical line, on the side with more room; above a horizontal one, or below it where it
/// is at the top. Curves go on behind the text.
void PlotPainter::paintLineText(const PlotLine& line, const QPointF& at) {
    const QFontMetricsF metrics = painter_.fontMetrics();
    const bool vertical = line.orientation == Qt::Vertical;
    const bool before = vertical && at.x() > axes_.center().x();
    const bool below = !vertical && at.y() - metrics.height() < axes_.top();
    const double room = (before ? at.x() - axes_.left() : axes_.right() - at.x()) - 2 * gap;
    const double width = std::min(metrics.horizontalAdvance(line.text) + 1, room);
    if (width < metrics.averageCharWidth() * 2)
        return;
    const QRectF place(before ? at.x() - gap - width : at.x() + gap,
                       vertical || below ? at.y() + 1 : at.y() - 1 - metrics.height(), width,
                       metrics.height());
    QColor ground = plotColors::background;
    ground.setAlpha(170);
    painter_.fillRect(place, ground);
    text(place, Qt::AlignLeft | Qt::AlignVCenter, line.text);
}

void PlotPainter::paintErrorBar(double x, double value, double error, double capHalf) {
    if (!std::isfinite(value) || !std::isfinite(error) || error == 0.0)
        return;
    const double upper = yOf(value + std::abs(error));
    const double lower = yOf(value - std::abs(error));
    painter_.drawLine(QLineF(x, upper, x, lower));
    if (capHalf < 1)
        return;
    painter_.drawLine(QLineF(x - capHalf, upper, x + capHalf, upper));
    painter_.drawLine(QLineF(x - capHalf, lower, x + capHalf, lower));
}

void PlotPainter::paintCurveErrors(const PlotCurve& curve, int from, int to) {
    const double spacing = xOf(xOfPoint(content_, 1)) - xOf(xOfPoint(content_, 0));
    const double capHalf = std::min(spacing / 4, 3.0);
    QColor color = readableColor(curve.color);
    color.setAlphaF(0.6f);
    painter_.setPen(QPen(color, 1));
    for (int i = from; i <= to; ++i)
        paintErrorBar(xOf(xOfPoint(content_, i)), double(curve.values[size_t(i)]),
                      double(curve.errors[size_t(i)]), capHalf);
}

void PlotPainter::paintCurve(const PlotCurve& curve) {
    const int last = int(curve.values.size()) - 1;
    // With the neighbours just outside, to which lines lead.
    const int from =
        int(std::clamp(pointNearX(content_, layout_.geometry.x.from) - 1, 0.0, double(last + 1)));
    const int to =
        int(std::clamp(pointNearX(content_, layout_.geometry.x.to) + 1, -1.0, double(last)));
    if (curve.errors.size() == curve.values.size())
        paintCurveErrors(curve, from, to);
    const CurvePen pen{readableColor(curve.color), std::clamp(curve.width, 0.5, 10.0)};
    QPolygonF run;
    for (int i = from; i <= to + 1; ++i) {
        if (i <= to && std::isfinite(curve.values[size_t(i)])) {
            run.append(place(curve, i));
        } else if (!run.isEmpty()) {
            paintCurveRun(painter_, run, axes_, pen);
            run.clear();
        }
    }
}

void PlotPainter::paintMark(const QPointF& at, PlotMarkShape shape, const QColor& color) {
    constexpr double radius = 3.5;
    painter_.setPen(QPen(color, 1.5));
    painter_.setBrush(shape == PlotMarkShape::Disc ? QBrush(color) : QBrush(Qt::NoBrush));
    if (shape != PlotMarkShape::Cross)
        return painter_.drawEllipse(at, radius, radius);
    const QPointF diagonal(radius, radius);
    const QPointF other(radius, -radius);
    painter_.drawLine(QLineF(at - diagonal, at + diagonal));
    painter_.drawLine(QLineF(at - other, at + other));
}

void PlotPainter::paintMarks(const PlotMarks& marks) {
    painter_.save();
    painter_.setRenderHint(QPainter::Antialiasing);
    for (const QPointF& point : marks.points)
        if (isPlace(point))
            paintMark({xOf(point.x()), yOf(point.y())}, marks.shape, readableColor(marks.color));
    painter_.restore();
}

double PlotPainter::barWidth() const {
    return axes_.width() / (layout_.geometry.x.to - layout_.geometry.x.from);
}

void PlotPainter::paintBars() {
    constexpr double share = 0.7;
    const double width = std::max(barWidth() * share, 1.0);
    const double zero = std::clamp(yOf(0.0), axes_.top(), axes_.bottom());
    for (size_t i = 0; i < content_.bars.size(); ++i) {
        const PlotBar& bar = content_.bars[i];
        if (!std::isfinite(bar.value))
            continue;
        const double x = xOf(double(i));
        const double top = yOf(double(bar.value));
        painter_.fillRect(QRectF(QPointF(x - width / 2, std::min(top, zero)),
                                 QPointF(x + width / 2, std::max(top, zero))),
                          readableColor(bar.color));
        painter_.setPen(QPen(plotColors::text, 1));
        paintErrorBar(x, double(bar.value), double(bar.error), std::min(width / 4, 6.0));
    }
    if (content_.bars.empty())
        return;
    painter_.setPen(QPen(plotColors::quietText, 1));
    painter_.drawLine(QLineF(axes_.left(), zero, axes_.right(), zero));
}

void PlotPainter::paintFrame() {
    painter_.setPen(QPen(plotColors::frame, 1));
    painter_.drawLine(axes_.bottomLeft(), axes_.bottomRight());
    painter_.drawLine(axes_.topLeft(), axes_.bottomLeft());
}

void PlotPainter::paintNumbers() {
    painter_.setPen(plotColors::quietText);
    const QFontMetricsF metrics = painter_.fontMetrics();
    const double line = metrics.height();
    const double digit = metrics.horizontalAdvance('0');
    for (const PlotTick& tick : layout_.xTicks) {
        const double half = double(tick.text.size() + 1) * digit / 2;
        painter_.drawText(QRectF(xOf(tick.at) - half, axes_.bottom() + 1, 2 * half, line),
                          Qt::AlignCenter, tick.text);
    }
    for (const PlotTick& tick : layout_.yTicks) {
        const double width = double(tick.text.size() + 1) * digit;
        painter_.drawText(QRectF(axes_.left() - gap - width, yOf(tick.at) - line / 2, width, line),
                          Qt::AlignRight | Qt::AlignVCenter, tick.text);
    }
}

void PlotPainter::paintBarNames() {
    const QFontMetricsF metrics = painter_.fontMetrics();
    constexpr int leastCharacters = 4; // a name cut shorter says nothing
    if (barWidth() < leastCharacters * metrics.averageCharWidth())
        return; // the read-out has the names
    painter_.setPen(plotColors::quietText);
    for (size_t i = 0; i < content_.bars.size(); ++i) {
        const double width = barWidth() - 1;
        text(QRectF(xOf(double(i)) - width / 2, axes_.bottom() + 1, width, metrics.height()),
             Qt::AlignCenter, content_.bars[i].name);
    }
}

void PlotPainter::paintLegendMark(const PlotLegendEntry& entry) {
    QColor color = readableColor(entry.color);
    if (entry.shape) {
        painter_.save();
        painter_.setRenderHint(QPainter::Antialiasing);
        paintMark(entry.mark.center(), *entry.shape, color);
        return painter_.restore();
    }
    const double thickness = entry.isBand ? entry.mark.height() * 0.6 : 3;
    if (entry.isBand)
        color.setAlphaF(0.6f);
    painter_.fillRect(QRectF(entry.mark.left(), entry.mark.center().y() - thickness / 2,
                             entry.mark.width(), thickness),
                      color);
}

void PlotPainter::paintLegend() {
    for (const PlotLegendEntry& entry : layout_.legend) {
        paintLegendMark(entry);
        painter_.setPen(plotColors::text);
        text(entry.text, Qt::AlignLeft | Qt::AlignVCenter, entry.name);
    }
}

void PlotPainter::paintLabels() {
    painter_.setPen(plotColors::text);
    if (!layout_.title.isEmpty())
        text(layout_.title, Qt::AlignLeft | Qt::AlignVCenter, content_.title);
    painter_.setPen(plotColors::quietText);
    if (!layout_.xLabel.isEmpty())
        text(layout_.xLabel, Qt::AlignCenter, content_.xLabel);
    if (layout_.yLabel.isEmpty())
        return;
    painter_.save();
    painter_.translate(layout_.yLabel.left(), layout_.yLabel.bottom());
    painter_.rotate(-90);
    text(QRectF(0, 0, layout_.yLabel.height(), layout_.yLabel.width()), Qt::AlignCenter,
         content_.yLabel);
    painter_.restore();
}

void PlotPainter::paintNote() {
    painter_.setPen(plotColors::text);
    painter_.drawText(axes_.adjusted(gap, 0, -gap, 0), Qt::AlignCenter | Qt::TextWordWrap,
                      content_.note);
}

} // namespace

void paintPlotGround(QPainter& painter, const QRectF& area, const PlotContent& content,
                     const PlotLayout& layout) {
    painter.save();
    painter.fillRect(area, plotColors::background);
    PlotPainter(painter, content, layout).paintGround();
    painter.restore();
}

bool haveSameGround(const PlotContent& a, const PlotContent& b) {
    const auto sameCurve = [](const PlotCurve& x, const PlotCurve& y) {
        return x.legend == y.legend && x.color == y.color;
    };
    const auto sameMarks = [](const PlotMarks& x, const PlotMarks& y) {
        return x.legend == y.legend && x.color == y.color && x.shape == y.shape;
    };
    const auto hasNumbers = [](const PlotContent& content) {
        return hasData(content) || content.yRange.has_value();
    };
    const auto sameName = [](const PlotBar& x, const PlotBar& y) { return x.name == y.name; };
    return a.gridShown == b.gridShown && a.legendShown == b.legendShown &&
           hasAxes(a) == hasAxes(b) && hasNumbers(a) == hasNumbers(b) && a.title == b.title &&
           a.xLabel == b.xLabel && a.yLabel == b.yLabel && a.bands == b.bands &&
           std::ranges::equal(a.curves, b.curves, sameCurve) &&
           std::ranges::equal(a.marks, b.marks, sameMarks) &&
           std::ranges::equal(a.bars, b.bars, sameName);
}

void paintPlotValues(QPainter& painter, const PlotContent& content, const PlotLayout& layout) {
    painter.save();
    PlotPainter(painter, content, layout).paintValues();
    painter.restore();
}

QColor readableColor(const QColor& color) {
    constexpr int leastBrightness = 100;
    const int brightness = qGray(color.rgb());
    if (brightness >= leastBrightness)
        return color;
    const double share = double(leastBrightness - brightness) / (255 - brightness);
    const auto lighter = [&](int channel) { return int(channel + share * (255 - channel)); };
    return {lighter(color.red()), lighter(color.green()), lighter(color.blue())};
}

double xOfPoint(const PlotContent& content, int index) {
    return content.xStart + content.xStep * index;
}

double pointNearX(const PlotContent& content, double x) {
    constexpr double largest = 1e9; // still an int
    const double index = std::round((x - content.xStart) / content.xStep);
    return std::isnan(index) ? 0.0 : std::clamp(index, -largest, largest);
}
