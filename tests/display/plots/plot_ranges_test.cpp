// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/plots/plot_layout.h"

#include <gtest/gtest.h>
#include <limits>

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr float nan = std::numeric_limits<float>::quiet_NaN();

TEST(PlotTicks, AreRoundAndInsideTheRange) {
    const std::tuple<PlotRange, int, std::vector<double>, QStringList> cases[] = {
        {{0, 10}, 6, {0, 2, 4, 6, 8, 10}, {"0", "2", "4", "6", "8", "10"}},
        {{0, 10}, 5, {0, 5, 10}, {"0", "5", "10"}},
        {{-0.2, 0.1}, 4, {-0.2, -0.1, 0, 0.1}, {"-0.2", "-0.1", "0.0", "0.1"}},
        {{99.97, 100.031}, 4, {99.98, 100, 100.02}, {"99.98", "100.00", "100.02"}},
        {{0, 10}, -3, {0, 10}, {"0", "10"}},
        {{-1e30, 1e30}, 3, {-1e30, 0, 1e30}, {"-1e+30", "0", "1e+30"}},
        {{1.25e6, 1.31e6}, 4, {1.26e6, 1.28e6, 1.3e6}, {"1.26e+06", "1.28e+06", "1.30e+06"}},
        {{3, 3}, 5, {}, {}},
        {{1e30, 1e30 * (1 + 1e-15)}, 5, {}, {}},
        {{2, 1}, 5, {}, {}},
        {{0, infinity}, 5, {}, {}},
        {{-1.7e308, 1.7e308}, 5, {}, {}},
        {{0, 1e-320}, 5, {}, {}}};
    for (const auto& [range, largestCount, expected, expectedTexts] : cases) {
        const std::vector<double> ticks = roundTicks(range, largestCount);
        ASSERT_EQ(ticks.size(), expected.size()) << range.from << ' ' << range.to;
        for (size_t i = 0; i < ticks.size(); ++i)
            EXPECT_NEAR(ticks[i], expected[i], 1e-9 * std::abs(range.to));
        const std::vector<QString> texts = tickTexts(ticks);
        EXPECT_EQ(QStringList(texts.begin(), texts.end()), expectedTexts);
    }
}

PlotContent curveOf(std::vector<float> values, std::vector<float> errors = {}) {
    PlotContent content;
    content.curves = {{"", Qt::red, std::move(values), std::move(errors)}};
    return content;
}

PlotContent barsOf(std::vector<PlotBar> bars) {
    PlotContent content;
    content.bars = std::move(bars);
    return content;
}

TEST(PlotRanges, FollowFromTheDataWithRoundBounds) {
    PlotContent withLine = curveOf({0.1f, 0.2f});
    withLine.lines = {{0.5, Qt::Horizontal, Qt::white, ""}, {9, Qt::Vertical, Qt::white, ""}};
    const std::tuple<const char*, PlotContent, PlotRange, PlotRange> cases[] = {
        {"none", {}, {0, 1}, {0, 1}},
        {"only gaps", curveOf({nan, nan}), {0, 1}, {0, 1}},
        {"rising", curveOf({100, 105, nan, 107}), {0, 3}, {99, 108}},
        {"errors", curveOf({10, 20}, {8, 2}), {0, 1}, {0, 25}},
        {"equal", curveOf({100, 100}), {0, 1}, {85, 115}},
        {"one 0", curveOf({0}), {-1, 1}, {-1.5, 1.5}},
        {"huge", curveOf({-1e30f, 1e30f}), {0, 1}, {-1.5e30, 1.5e30}},
        {"horizontal line", withLine, {0, 1}, {0, 0.6}},
        {"bars", barsOf({{"a", Qt::red, 4, 1}, {"b", Qt::red, nan, 1}}), {-0.5, 1.5}, {0, 6}},
        {"bars below 0", barsOf({{"a", Qt::red, -4, nan}}), {-0.5, 0.5}, {-5, 0}}};
    for (const auto& [name, content, expectedX, expectedY] : cases) {
        EXPECT_EQ(wholeXRange(content), expectedX) << name;
        const PlotRange y = wholeYRange(content);
        const double tolerance = 1e-9 * std::abs(expectedY.to - expectedY.from);
        EXPECT_NEAR(y.from, expectedY.from, tolerance) << name;
        EXPECT_NEAR(y.to, expectedY.to, tolerance) << name;
    }
    PlotContent given = curveOf({1, 2});
    given.xRange = {-5, 5};
    given.yRange = {3, 3}; // can't be shown
    EXPECT_EQ(wholeXRange(given), (PlotRange{-5, 5}));
    EXPECT_TRUE(isUsable(wholeYRange(given)));
    given.yRange = {0, 7};
    EXPECT_EQ(wholeYRange(given), (PlotRange{0, 7}));
}

TEST(PlotRanges, StandStillWhileTheDataFitAndFillHalfOfThem) {
    const PlotRange previous{10, 20};
    const std::vector<std::vector<float>> keeping = {{11, 16}, {10, 20}, {nan}},
                                          changing = {
                                              {11, 15.9f}, {11, 20.1f}, {9.9f, 18}, {15, 15}};
    for (const std::vector<float>& values : keeping)
        EXPECT_EQ(wholeYRange(curveOf(values), previous), previous) << values.back();
    for (const std::vector<float>& values : changing)
        EXPECT_NE(wholeYRange(curveOf(values), previous), previous) << values.back();
}

TEST(PlotLayout, LeavesTextsOutWhereThereIsNoRoom) {
    PlotContent content = curveOf({100, 900});
    content.curves[0].legend = "Mean";
    content.title = "ROI 1";
    content.xLabel = content.yLabel = "Label";
    content.bands = {{0, 1, Qt::red, "Faces"}, {2, 3, Qt::red, "Faces"}};
    // The last one: which share of the area is for the curves.
    const std::tuple<QSize, size_t, bool, size_t, size_t, double> cases[] = {
        {{150, 100}, 0, false, 2, 5, 0.4},
        {{240, 160}, 2, true, 2, 7, 0.4},
        {{1200, 800}, 2, true, 5, 12, 0.85}};
    for (const auto& [size, legend, labels, leastTicks, mostTicks, leastShare] : cases) {
        const QRectF area({0, 0}, size);
        const PlotLayout layout = layOutPlot(area, content, {{0, 500}, {0, 1000}}, QFont());
        EXPECT_EQ(layout.legend.size(), legend);
        EXPECT_EQ(layout.xLabel.isEmpty(), !labels);
        EXPECT_EQ(layout.yLabel.isEmpty(), !labels);
        for (const std::vector<PlotTick>& ticks : {layout.xTicks, layout.yTicks}) {
            EXPECT_GE(ticks.size(), leastTicks) << size.width();
            EXPECT_LE(ticks.size(), mostTicks) << size.width();
        }
        const QRectF& axes = layout.geometry.axes;
        EXPECT_GE(axes.width() * axes.height(), leastShare * size.width() * size.height());
        EXPECT_TRUE(area.contains(axes));
        EXPECT_FALSE(axes.intersects(layout.title) || axes.intersects(layout.xLabel) ||
                     axes.intersects(layout.yLabel));
        for (const PlotLegendEntry& entry : layout.legend)
            EXPECT_FALSE(axes.intersects(entry.text)) << "never over the curves";
        // A painter's numbers are limited.
        for (const double far : {1e300, -1e300, double(nan)})
            EXPECT_LT(std::abs(layout.geometry.positionOfX(far)), 1e5);
    }
}

TEST(PlotRanges, AxesNeedSomethingThatStandsOnThem) {
    PlotContent content;
    content.note = "Wait";
    EXPECT_FALSE(hasAxes(content));
    content.bands = {{1, 2, Qt::red, "a"}};
    EXPECT_TRUE(hasAxes(content));
}

} // namespace
