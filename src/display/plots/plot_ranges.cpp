// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/plots/plot_ranges.h"

#include "display/plots/stack_painting.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr int stepsOfRoundedRange = 8;
constexpr double margin = 0.04; ///< share of the data's range that stays free above and below
constexpr double leastRelativeWidth = 1e-12;
constexpr int mostSignificantDigits = 6;

/// Grows with what is added; not finite values don't count.
class Extent {
public:
    void add(double value) {
        if (!std::isfinite(value))
            return;
        range_.from = empty_ ? value : std::min(range_.from, value);
        range_.to = empty_ ? value : std::max(range_.to, value);
        empty_ = false;
    }
    [[nodiscard]] bool empty() const { return empty_; }
    [[nodiscard]] const PlotRange& range() const { return range_; }

private:
    bool empty_ = true;
    PlotRange range_;
};

/// `range` itself where it is usable, else wider.
PlotRange widened(const PlotRange& range) {
    if (isUsable(range))
        return range;
    const double half = range.from == 0.0 && range.to == 0.0
                            ? 1.0
                            : std::max(std::abs(range.from), std::abs(range.to)) / 10;
    const PlotRange wider{range.from - half, range.to + half};
    return isUsable(wider) ? wider : PlotRange();
}

/// 1, 2, 5, 10, 20, 50 ... for 0, 1, 2, 3, 4, 5 ...
double roundStep(int index) {
    constexpr double mantissas[] = {1, 2, 5};
    const int decade = index >= 0 ? index / 3 : -((2 - index) / 3);
    return mantissas[index - 3 * decade] * std::pow(10.0, decade);
}

int decadeOf(double number) {
    return int(std::floor(std::log10(std::abs(number)) + 1e-9));
}

/// The smallest round step with at most `largestCount` multiples in the range, and the first and
/// last multiple.
struct Steps {
    double step = 0.0;
    double first = 0.0;
    double last = -1.0;
};

Steps stepsIn(const PlotRange& range, int largestCount) {
    const double width = range.to - range.from;
    const int start = 3 * decadeOf(width / largestCount);
    for (int index = start; index < start + 12; ++index) {
        Steps steps;
        steps.step = roundStep(index);
        if (!(steps.step > 0.0) || !std::isfinite(steps.step))
            continue;
        // The bounds are often multiples themselves, but for a rounding error.
        constexpr double tolerance = 1e-9;
        steps.first = std::ceil(range.from / steps.step - tolerance);
        steps.last = std::floor(range.to / steps.step + tolerance);
        if (steps.last - steps.first < largestCount)
            return steps;
    }
    return {};
}

void addCurve(Extent& extent, const PlotCurve& curve) {
    const bool withErrors = curve.errors.size() == curve.values.size();
    for (size_t i = 0; i < curve.values.size(); ++i) {
        const double value = double(curve.values[i]);
        extent.add(value);
        if (withErrors && std::isfinite(value)) {
            extent.add(value - double(curve.errors[i]));
            extent.add(value + double(curve.errors[i]));
        }
    }
}

void addStack(Extent& extent, const PlotContent& content) {
    extent.add(0.0);
    for (size_t point = 0; point < stackedPoints(content); ++point)
        extent.add(stackHeight(content, point));
}

Extent dataExtentY(const PlotContent& content) {
    Extent extent;
    if (content.stacked)
        addStack(extent, content);
    else
        for (const PlotCurve& curve : content.curves)
            addCurve(extent, curve);
    for (const PlotMarks& marks : content.marks)
        for (const QPointF& point : marks.points)
            extent.add(point.y());
    for (const PlotBar& bar : content.bars) {
        const double error = std::isfinite(bar.error) ? std::abs(double(bar.error)) : 0.0;
        extent.add(0.0);
        extent.add(double(bar.value) - error);
        extent.add(double(bar.value) + error);
    }
    for (const PlotLine& line : content.lines)
        if (line.orientation == Qt::Horizontal)
            extent.add(line.at);
    return extent;
}

bool stillFits(const PlotRange& shown, const PlotRange& data) {
    return data.from >= shown.from && data.to <= shown.to &&
           data.to - data.from >= 0.5 * (shown.to - shown.from);
}

} // namespace

bool isUsable(const PlotRange& range) {
    const double width = range.to - range.from;
    return std::isfinite(range.from) && std::isfinite(range.to) && std::isfinite(width) &&
           width > std::numeric_limits<double>::min() / leastRelativeWidth &&
           width > leastRelativeWidth * std::max(std::abs(range.from), std::abs(range.to));
}

PlotRange wholeXRange(const PlotContent& content) {
    if (content.xRange && isUsable(*content.xRange))
        return *content.xRange;
    if (!content.bars.empty())
        return {-0.5, double(content.bars.size()) - 0.5};
    Extent extent;
    for (const PlotCurve& curve : content.curves)
        if (!curve.values.empty()) {
            extent.add(content.xStart);
            extent.add(content.xStart + content.xStep * double(curve.values.size() - 1));
        }
    for (const PlotMarks& marks : content.marks)
        for (const QPointF& point : marks.points)
            extent.add(point.x());
    for (const PlotBand& band : content.bands) {
        extent.add(band.from);
        extent.add(band.to);
    }
    return extent.empty() ? PlotRange() : widened(extent.range());
}

PlotRange wholeYRange(const PlotContent& content, const std::optional<PlotRange>& previous) {
    if (content.yRange && isUsable(*content.yRange))
        return *content.yRange;
    const Extent extent = dataExtentY(content);
    if (extent.empty())
        return previous && isUsable(*previous) ? *previous : PlotRange();
    const PlotRange data = widened(extent.range());
    if (previous && isUsable(*previous) && stillFits(*previous, data))
        return *previous;
    const double free = margin * (data.to - data.from);
    // Nothing is to be kept free beyond 0, from which bars start.
    const auto bound = [&](double value, double beyond) {
        return (!content.bars.empty() || content.stacked) && value == 0.0 ? 0.0 : value + beyond;
    };
    return roundedOut({bound(data.from, -free), bound(data.to, free)});
}

std::vector<double> roundTicks(const PlotRange& range, int largestCount) {
    std::vector<double> ticks;
    if (!isUsable(range))
        return ticks;
    const Steps steps = stepsIn(range, std::max(largestCount, 2));
    const int count = int(steps.last - steps.first) + 1;
    for (int i = 0; i < count; ++i)
        ticks.push_back((steps.first + i) * steps.step + 0.0); // no negative zero
    return ticks;
}

PlotRange roundedOut(const PlotRange& range) {
    const Steps steps = stepsIn(range, stepsOfRoundedRange);
    constexpr double tolerance = 1e-9;
    const PlotRange rounded{std::floor(range.from / steps.step + tolerance) * steps.step,
                            std::ceil(range.to / steps.step - tolerance) * steps.step};
    return isUsable(rounded) ? rounded : range;
}

std::vector<QString> tickTexts(const std::vector<double>& ticks) {
    std::vector<QString> texts;
    if (ticks.empty())
        return texts;
    const double largest = std::max(std::abs(ticks.front()), std::abs(ticks.back()));
    const double step = ticks.size() > 1 ? ticks[1] - ticks[0] : largest;
    const int stepDecade = step > 0.0 ? decadeOf(step) : 0;
    const int decade = largest > 0.0 ? decadeOf(largest) : 0;
    const bool scientific = decade >= mostSignificantDigits || stepDecade < -4;
    const int decimals = scientific ? decade - stepDecade : -stepDecade;
    for (const double tick : ticks) {
        const QString text = QString::number(tick, scientific ? 'e' : 'f',
                                             std::clamp(decimals, 0, 2 * mostSignificantDigits));
        texts.push_back(tick == 0.0 && scientific ? QStringLiteral("0") : text);
    }
    return texts;
}

bool isPlace(const QPointF& point) {
    return std::isfinite(point.x()) && std::isfinite(point.y());
}

bool hasData(const PlotContent& content) {
    const auto isFinite = [](float value) { return std::isfinite(value); };
    const auto hasPlace = [&](const PlotMarks& marks) {
        return std::any_of(marks.points.begin(), marks.points.end(), isPlace);
    };
    return !content.bars.empty() ||
           std::any_of(content.marks.begin(), content.marks.end(), hasPlace) ||
           std::any_of(content.curves.begin(), content.curves.end(), [&](const PlotCurve& curve) {
               return std::any_of(curve.values.begin(), curve.values.end(), isFinite);
           });
}

bool hasAxes(const PlotContent& content) {
    return hasData(content) || !content.bands.empty() || content.xRange || content.yRange;
}
