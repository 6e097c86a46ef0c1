// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/plots/plot_layout.h"

#include <gtest/gtest.h>
#include <limits>

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr float nan = std::numeric_limits<float>::quiet_NaN();

TEST(PlotTicks, AreRoundAndInsideTheRange) {
    struct Case {
        PlotRange range;
        int largestCount;
        std::vector<double> ticks;
        QStringList texts;
    };
    const Case cases[] = {
        {{0, 10}, 6, {0, 2, 4, 6, 8, 10}, {"0", "2", "4", "6", "8", "10"}},
        {{0, 10}, 5, {0, 5, 10}, {"0", "5", "10"}},
        {{-0.3, 0.3},
         7,
         {-0.3, -0.2, -0.1, 0, 0.1, 0.2, 0.3},
         {"-0.3", "-0.2", "-0.1", "0.0", "0.1", "0.2", "0.3"}},
        {{99.97, 100.031}, 4, {99.98, 100, 100.02}, {"99.98", "100.00", "100.02"}},
        {{-0.5, 499.5}, 6, {0, 100, 200, 300, 400}, {"0", "100", "200", "300", "400"}},
        {{0.1, 0.9}, 2, {0.5}, {"0.5"}},
        {{0, 10}, -3, {0, 10}, {"0", "10"}},
        {{-1e30, 1e30}, 3, {-1e30, 0, 1e30}, {"-1e+30", "0", "1e+30"}},
        {{1.25e6, 1.31e6}, 4, {1.26e6, 1.28e6, 1.3e6}, {"1.26e+06", "1.28e+06", "1.30e+06"}},
        {{2e-7, 6e-7}, 3, {2e-7, 4e-7, 6e-7}, {"2e-07", "4e-07", "6e-07"}},
        {{3, 3}, 5, {}, {}},
        {{1e30, 1e30 * (1 + 1e-15)}, 5, {}, {}},
        {{2, 1}, 5, {}, {}},
        {{0, infinity}, 5, {}, {}},
        {{-1.7e308, 1.7e308}, 5, {}, {}},
        {{0, 1e-320}, 5, {}, {}},
    };
    for (const Case& wanted : cases) {
        const std::vector<double> ticks = roundTicks(wanted.range, wanted.largestCount);
        ASSERT_EQ(ticks.size(), wanted.ticks.size()) << wanted.range.from << ' ' << wanted.range.to;
        for (size_t i = 0; i < ticks.size(); ++i)
            EXPECT_NEAR(ticks[i], wanted.ticks[i], 1e-9 * std::abs(wanted.range.to));
        const std::vector<QString> texts = tickTexts(ticks);
        EXPECT_EQ(QStringList(texts.begin(), texts.end()), wanted.texts);
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
    struct Case {
        const char* name;
        PlotContent content;
        PlotRange x;
        PlotRange y;
    };
    const Case cases[] = {
        {"none", {}, {0, 1}, {0, 1}},
        {"empty curve", curveOf({}), {0, 1}, {0, 1}},
        {"only gaps", curveOf({nan, nan}), {0, 1}, {0, 1}},
        {"rising", curveOf({100, 105, nan, 107}), {0, 3}, {99, 108}},
        {"errors", curveOf({10, 20}, {8, 2}), {0, 1}, {0, 25}},
        {"equal", curveOf({100, 100}), {0, 1}, {85, 115}},
        {"one 0", curveOf({0}), {-1, 1}, {-1.5, 1.5}},
        {"huge", curveOf({-1e30f, 1e30f}), {0, 1}, {-1.5e30, 1.5e30}},
        {"horizontal line", withLine, {0, 1}, {0, 0.6}},
        {"bars from 0",
         barsOf({{"a", Qt::red, 4, 1}, {"b", Qt::red, nan, 1}}),
         {-0.5, 1.5},
         {0, 6}},
        {"bars below 0", barsOf({{"a", Qt::red, -4, nan}}), {-0.5, 0.5}, {-5, 0}},
    };
    for (const Case& wanted : cases) {
        const PlotRange x = wholeXRange(wanted.content);
        const PlotRange y = wholeYRange(wanted.content);
        EXPECT_EQ(x, wanted.x) << wanted.name << ' ' << x.from << ' ' << x.to;
        const double tolerance = 1e-9 * std::abs(wanted.y.to - wanted.y.from);
        EXPECT_NEAR(y.from, wanted.y.from, tolerance) << wanted.name;
        EXPECT_NEAR(y.to, wanted.y.to, tolerance) << wanted.name;
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
    const PlotRange previous{0, 10};
    for (const auto& [values, kept] :
         std::vector<std::pair<std::vector<float>, bool>>{{{1, 6}, true},
                                                          {{0, 10}, true},
                                                          {{1, 5.9f}, false},
                                                          {{1, 10.1f}, false},
                                                          {{-0.1f, 8}, false},
                                                          {{nan}, true},
                                                          {{5, 5}, false}})
        EXPECT_EQ(wholeYRange(curveOf(values), previous) == previous, kept) << values.back();
}

TEST(PlotLayout, LeavesTextsOutWhereThereIsNoRoom) {
    PlotContent content = curveOf({100, 900});
    content.curves[0].legend = "Mean";
    content.title = "ROI 1";
    content.xLabel = content.yLabel = "Label";
    content.bands = {{0, 1, Qt::red, "Faces"}, {2, 3, Qt::red, "Faces"}};
    struct Case {
        QSize size;
        size_t legend;
        bool labels;
        size_t leastTicks, mostTicks;
        double leastShare; ///< of the area that is for the curves
    };
    const Case cases[] = {{{150, 100}, 0, false, 2, 5, 0.4},
                          {{240, 160}, 2, true, 2, 7, 0.4},
                          {{1200, 800}, 2, true, 5, 12, 0.85}};
    for (const auto& [size, legend, labels, leastTicks, mostTicks, leastShare] : cases) {
        const QRectF area({0, 0}, size);
        const PlotRanges ranges{{0, 500}, {0, 1000}};
        const PlotLayout layout = layOutPlot(area, content, ranges, QFont());
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

} // namespace
