// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/plots/stack_painting.h"

#include "display/plots/plot_drawing.h"

#include <QPainter>
#include <algorithm>
#include <cmath>

namespace {

double heightOf(const PlotCurve& curve, size_t point) {
    const bool counts = point < curve.values.size() && std::isfinite(curve.values[point]);
    return counts ? std::max(double(curve.values[point]), 0.0) : 0.0;
}

/// Collects the rectangles of each layer and paints them layer by layer.
class StackPainter {
public:
    StackPainter(const PlotContent& content, const PlotGeometry& geometry)
        : content_(content), geometry_(geometry), layers_(content.curves.size()) {}

    void addPoints();
    void paint(QPainter& painter) const;

private:
    void addBar(size_t point, int left, int right);

    const PlotContent& content_;
    const PlotGeometry& geometry_;
    std::vector<QList<QRect>> layers_;
};

void StackPainter::addPoints() {
    constexpr double share = 0.8; // of the room of a point, where that is more than a few pixels
    const double spacing =
        geometry_.axes.width() / (geometry_.x.to - geometry_.x.from) * std::abs(content_.xStep);
    const int width = std::max(int(spacing * share), 1);
    const auto leftOf = [&](double point) {
        const double middle = geometry_.positionOfX(content_.xStart + content_.xStep * point);
        return int(std::floor(middle - width / 2.0 + 0.5));
    };
    const double count = double(stackedPoints(content_));
    const double from = pointNearX(content_, geometry_.x.from);
    const double to = pointNearX(content_, geometry_.x.to);
    const auto end = size_t(std::clamp(std::max(from, to) + 1, 0.0, count));
    size_t highest = size_t(std::clamp(std::min(from, to), 0.0, count));
    double height = -1.0;
    for (size_t point = highest; point < end; ++point) {
        const double here = stackHeight(content_, point);
        if (here > height) {
            highest = point;
            height = here;
        }
        const int left = leftOf(double(point));
        if (point + 1 < end && leftOf(double(point + 1)) == left)
            continue;
        addBar(highest, left, left + width);
        height = -1.0;
    }
}

void StackPainter::addBar(size_t point, int left, int right) {
    double sum = 0.0;
    int bottom = int(std::lround(geometry_.positionOfY(0.0)));
    for (size_t layer = 0; layer < layers_.size(); ++layer) {
        sum += heightOf(content_.curves[layer], point);
        const int top = int(std::lround(geometry_.positionOfY(sum)));
        if (top < bottom)
            layers_[layer].append(QRect(left, top, right - left, bottom - top));
        bottom = std::min(bottom, top);
    }
}

void StackPainter::paint(QPainter& painter) const {
    painter.setPen(Qt::NoPen);
    for (size_t layer = 0; layer < layers_.size(); ++layer) {
        painter.setBrush(readableColor(content_.curves[layer].color));
        painter.drawRects(layers_[layer]);
    }
}

} // namespace

double stackHeight(const PlotContent& content, size_t point) {
    double sum = 0.0;
    for (const PlotCurve& curve : content.curves)
        sum += heightOf(curve, point);
    return sum;
}

size_t stackedPoints(const PlotContent& content) {
    size_t longest = 0;
    for (const PlotCurve& curve : content.curves)
        longest = std::max(longest, curve.values.size());
    return longest;
}

void paintStack(QPainter& painter, const PlotContent& content, const PlotGeometry& geometry) {
    StackPainter stack(content, geometry);
    stack.addPoints();
    stack.paint(painter);
}
