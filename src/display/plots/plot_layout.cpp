// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/plots/plot_layout.h"

#include "dialogs/appearance.h"

#include <QFontMetricsF>
#include <algorithm>
#include <cmath>
#include <set>

namespace {

constexpr double smallWidth = 220; // logical pixels
constexpr double smallHeight = 120;
constexpr double largeWidth = 700;
constexpr double heightForXLabel = 150;
constexpr double gap = 4;

/// Takes rooms from the sides of the area; what is left is for the axes.
class Room {
public:
    explicit Room(const QRectF& area) : rest_(area) {}
    [[nodiscard]] QRectF takeTop(double height) {
        const QRectF taken(rest_.left(), rest_.top(), rest_.width(), height);
        rest_.setTop(rest_.top() + height);
        return taken;
    }
    [[nodiscard]] QRectF takeBottom(double height) {
        const QRectF taken(rest_.left(), rest_.bottom() - height, rest_.width(), height);
        rest_.setBottom(rest_.bottom() - height);
        return taken;
    }
    [[nodiscard]] QRectF takeLeft(double width) {
        const QRectF taken(rest_.left(), rest_.top(), width, rest_.height());
        rest_.setLeft(rest_.left() + width);
        return taken;
    }
    void dropRight(double width) { rest_.setRight(rest_.right() - width); }
    [[nodiscard]] const QRectF& rest() const { return rest_; }

private:
    QRectF rest_;
};

std::vector<PlotLegendEntry> legendEntries(const PlotContent& content) {
    std::vector<PlotLegendEntry> entries;
    for (const PlotCurve& curve : content.curves)
        if (!curve.legend.isEmpty())
            entries.push_back({{}, {}, curve.legend, curve.color, false});
    for (const PlotMarks& marks : content.marks)
        if (!marks.legend.isEmpty())
            entries.push_back({{}, {}, marks.legend, marks.color, false, marks.shape});
    std::set<QString> names;
    for (const PlotBand& band : content.bands)
        if (!band.name.isEmpty() && names.insert(band.name).second)
            entries.push_back({{}, {}, band.name, band.color, true});
    return entries;
}

/// Fills rows from the left; entries that find no room are left out. Returns the height used.
double placeLegend(std::vector<PlotLegendEntry>& entries, const QRectF& area,
                   const QFontMetricsF& metrics, double largestHeight) {
    const double line = metrics.height();
    const double mark = line * 0.8;
    double left = area.left();
    double top = area.top();
    size_t placed = 0;
    for (PlotLegendEntry& entry : entries) {
        const double text =
            std::min(metrics.horizontalAdvance(entry.name) + 1, area.width() - mark - 2 * gap);
        if (left > area.left() && left + mark + gap + text > area.right()) {
            left = area.left();
            top += line;
        }
        if (top + line > area.top() + largestHeight)
            break;
        entry.mark = QRectF(left, top, mark, line);
        entry.text = QRectF(left + mark + gap, top, text, line);
        left = entry.text.right() + 3 * gap;
        ++placed;
    }
    entries.resize(placed);
    return placed == 0 ? 0.0 : top + line - area.top();
}

std::vector<PlotTick> ticksOf(const PlotRange& range, int largestCount) {
    const std::vector<double> places = roundTicks(range, largestCount);
    const std::vector<QString> texts = tickTexts(places);
    std::vector<PlotTick> ticks;
    for (size_t i = 0; i < places.size(); ++i)
        ticks.push_back({places[i], texts[i]});
    return ticks;
}

qsizetype longestText(const std::vector<PlotTick>& ticks) {
    qsizetype longest = 0;
    for (const PlotTick& tick : ticks)
        longest = std::max(longest, tick.text.size());
    return longest;
}

/// As many as fit beside each other. Their texts depend on their number, so fewer are tried.
std::vector<PlotTick> ticksAlong(const PlotRange& range, double width, double digit) {
    constexpr int most = 12;
    for (int count = std::clamp(int(width / (4 * digit)), 2, most); count > 2; --count) {
        std::vector<PlotTick> ticks = ticksOf(range, count);
        const double step = ticks.size() > 1 ? ticks[1].at - ticks[0].at : range.to - range.from;
        const double room = step / (range.to - range.from) * width;
        if (double(longestText(ticks) + 2) * digit <= room)
            return ticks;
    }
    return ticksOf(range, 2);
}

double fontFactor(const QRectF& area, bool small) {
    if (small)
        return 0.8;
    return area.width() >= largeWidth ? 1.0 : 0.88;
}

double limited(double position, double from, double to) {
    constexpr double far = 10000;
    if (!(position > from - far)) // also NaN
        return from - far;
    return std::min(position, to + far);
}

} // namespace

double PlotGeometry::positionOfX(double value) const {
    return limited(axes.left() + (value - x.from) / (x.to - x.from) * axes.width(), axes.left(),
                   axes.right());
}

double PlotGeometry::positionOfY(double value) const {
    return limited(axes.top() + (y.to - value) / (y.to - y.from) * axes.height(), axes.top(),
                   axes.bottom());
}

PlotLayout layOutPlot(const QRectF& area, const PlotContent& content, const PlotRanges& ranges,
                      const QFont& font) {
    const bool small = area.width() < smallWidth || area.height() < smallHeight;
    PlotLayout layout;
    layout.textFont = scaledFont(font, fontFactor(area, small));
    layout.numberFont = numberFont(font, fontFactor(area, small));
    const QFontMetricsF texts(layout.textFont);
    const QFontMetricsF numbers(layout.numberFont);
    const double digit = numbers.horizontalAdvance('0');
    const double line = texts.height();

    Room room(area.adjusted(gap, gap / 2, -gap, -gap / 2));
    if (!content.title.isEmpty())
        layout.title = room.takeTop(line);
    if (content.legendShown && !small) {
        layout.legend = legendEntries(content);
        (void)room.takeTop(placeLegend(layout.legend, room.rest(), texts, area.height() / 4));
    }
    if (!content.xLabel.isEmpty() && !small && area.height() >= heightForXLabel)
        layout.xLabel = room.takeBottom(line);
    (void)room.takeBottom(content.bars.empty() ? numbers.height() : line);
    if (!content.yLabel.isEmpty() && !small)
        layout.yLabel = room.takeLeft(line);
    (void)room.takeTop(numbers.height() / 2); // half of the uppermost number stands above
    room.dropRight(digit * 2);

    const int yCount = std::clamp(int(room.rest().height() / (1.6 * numbers.height())), 2, 9);
    if (hasData(content) || content.yRange)
        layout.yTicks = ticksOf(ranges.y, yCount);
    const double leastCharacters = small ? 4 : 5;
    (void)room.takeLeft(std::max(double(longestText(layout.yTicks)), leastCharacters) * digit +
                        gap);
    // Whole pixels keep the frame sharp.
    QRectF axes = room.rest();
    axes = QRectF(std::ceil(axes.left()), std::ceil(axes.top()), std::floor(axes.width()),
                  std::floor(axes.height()));
    axes.setWidth(std::max(axes.width(), 1.0));
    axes.setHeight(std::max(axes.height(), 1.0));
    layout.geometry = {axes, ranges.x, ranges.y};
    if (content.bars.empty() && hasAxes(content))
        layout.xTicks = ticksAlong(ranges.x, axes.width(), digit);
    if (!layout.xLabel.isEmpty()) {
        layout.xLabel.setLeft(axes.left());
        layout.xLabel.setRight(axes.right());
    }
    if (!layout.yLabel.isEmpty()) {
        layout.yLabel.setTop(axes.top());
        layout.yLabel.setBottom(axes.bottom());
    }
    return layout;
}
