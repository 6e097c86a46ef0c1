// SPDX-License-Identifier: GPL-3.0-or-later
#include "regions/event_related_average.h"
#include "regions/time_course_statistics.h"
#include "support/conditions.h"

#include <gtest/gtest.h>
#include <limits>
#include <numeric>

namespace {

std::vector<ConditionAverage> averagesOf(const std::vector<float>& values,
                                         const StimulationProtocol& protocol,
                                         const AveragingWindow& window, float TR = 2000.0f) {
    std::vector<ConditionAverage> averages;
    EXPECT_EQ(averageTrials(values, protocol, TR, window, averages), AveragingResult::Ok);
    return averages;
}

void expectNear(const std::vector<float>& values, const std::vector<float>& expected) {
    ASSERT_EQ(values.size(), expected.size());
    for (size_t i = 0; i < values.size(); ++i)
        EXPECT_NEAR(values[i], expected[i], 1e-4f) << i;
}

/// Onsets at the volumes 1, 4 and 8 of this curve of ten.
const std::vector<float> curve{90, 110, 120, 100, 100, 130, 200, 200, 200, 260};

StimulationProtocol threeTrials() {
    StimulationProtocol protocol;
    addCondition(protocol, "Rest", {{1, 1}});
    addCondition(protocol, "BASELINE", {{3, 4}});
    addCondition(protocol, "Hands", {{2, 2}, {9, 30}, {5, 5}, {11, 12}});
    addCondition(protocol, "Later", {{40, 50}});
    protocol.conditions[2].color = {1, 2, 3};
    return protocol;
}

} // namespace

TEST(EventRelatedAverage, TakesTheChangeFromEachTrialsBaseline) {
    AveragingWindow window{2, 2, -1, 0, true, true};
    // Baselines 100, 200 and 100; the first trial lacks its first volume, the one at 8 its last.
    // Volume by volume: 20 (at 4), 0 (at 8); -10, 0, 0; 10, 0, 0; 20, 30, 30; 0, 100.
    const auto averages = averagesOf(curve, threeTrials(), window);
    ASSERT_EQ(averages.size(), 1u);
    EXPECT_EQ(averages[0].color, (RgbColor{1, 2, 3}));
    EXPECT_EQ(averages[0].trials, (std::vector<int>{2, 3, 3, 3, 2}));
    expectNear(averages[0].mean, {10, -10 / 3.0f, 10 / 3.0f, 80 / 3.0f, 50});
    // Of the pair 0 and d it is d / 2, of -10, 0, 0 it is 10 / 3.
    expectNear(averages[0].standardError, {10, 10 / 3.0f, 10 / 3.0f, 10 / 3.0f, 50});

    // 400 / 3 is the mean baseline: the values are (120 + 200) / 2 - 400 / 3, and so on.
    window.percent = window.epochBased = false;
    const auto common = averagesOf(curve, threeTrials(), window);
    expectNear(common.at(0).mean, {80 / 3.0f, -10 / 3.0f, 10 / 3.0f, 110 / 3.0f, 50 / 3.0f});
}

TEST(EventRelatedAverage, LeavesOutTrialsWithoutABaseline) {
    const AveragingWindow window{0, 1, -3, -3, false, true};
    const auto averages = averagesOf(curve, threeTrials(), window); // not the trial at 1
    EXPECT_EQ(averages.at(0).trials, (std::vector<int>{2, 2}));
    expectNear(averages[0].mean, {30, 75}); // -10, 70; 20, 130 about the values 110 and 130
    const std::vector<float> flat(10, 0.0f);
    EXPECT_TRUE(averagesOf(flat, threeTrials(), {0, 1, 0, 0, true, true}).empty());
    EXPECT_TRUE(averagesOf({}, threeTrials(), {}).empty());
}

TEST(EventRelatedAverage, OnsetsAreThoseOfTheConditionOfEachVolume) {
    std::vector<float> ramp(10);
    std::iota(ramp.begin(), ramp.end(), 1.0f);
    constexpr int least = std::numeric_limits<int>::min();
    const Intervals intervals{{-5, 3},      {0, 0},       {1, 1},         {10, 10},      {11, 12},
                              {2000, 2000}, {2001, 3999}, {18001, 90000}, {least, 90000}};
    for (const ResolutionOfTime unit : {ResolutionOfTime::Volumes, ResolutionOfTime::Milliseconds})
        for (const auto& interval : intervals) {
            StimulationProtocol protocol;
            protocol.resolutionOfTime = unit;
            addCondition(protocol, "A", {interval});
            std::vector<int> conditions;
            for (int volume = 0; volume < 10; ++volume)
                conditions.push_back(conditionAtVolume(protocol, volume, 2000.0f));
            const auto onset = std::ranges::find(conditions, 0);
            const auto averages = averagesOf(ramp, protocol, {-1, 1, 0, 0, true, true});
            SCOPED_TRACE(interval.first);
            ASSERT_EQ(averages.size(), onset == conditions.end() ? 0u : 1u);
            // One volume after the onset: 1 more than its baseline, which is its number from 1.
            if (!averages.empty() && onset != conditions.end() - 1)
                expectNear(averages[0].mean, {100.0f / float(onset - conditions.begin() + 1)});
        }
}

TEST(EventRelatedAverage, TellsOfTooManyTrials) {
    StimulationProtocol protocol;
    std::vector<ConditionAverage> averages;
    for (int left = maximumTrials; left > 0; left -= 300)
        addCondition(protocol, "C", Intervals(size_t(std::min(left, 300)), {2, 2}));
    addCondition(protocol, "rest", {{2, 2}});
    EXPECT_EQ(averageTrials(curve, protocol, 0, {}, averages), AveragingResult::Ok);
    EXPECT_EQ(averages.size(), 7u);
    addCondition(protocol, "last", {{2, 2}});
    EXPECT_EQ(averageTrials(curve, protocol, 0, {}, averages), AveragingResult::TooManyTrials);
    EXPECT_TRUE(averages.empty());
}

TEST(TimeCourseStatistics, AgreeWithTheirClosedForms) {
    // Deviations -2, 0, 0, 2 about 50: a standard deviation of sqrt(8 / 3).
    EXPECT_NEAR(temporalSignalToNoise(std::vector<float>{48, 50, 50, 52}), 50 / 1.6329932, 1e-5);
    EXPECT_NEAR(temporalSignalToNoise(std::vector<float>{6, 8}), 7 / 1.4142136, 1e-5);
    EXPECT_EQ(temporalSignalToNoise(std::vector<float>{7}), 0.0);
    EXPECT_EQ(temporalSignalToNoise(std::vector<float>(9, 0.1f)), 0.0);

    // 100 + 3 t, and what has no trend: 1, -1, -1, 1.
    expectNear(detrended(std::vector<float>{101, 102, 105, 110}), {105.5f, 103.5f, 103.5f, 105.5f});
    EXPECT_TRUE(detrended({}).empty());
    expectNear(percentOfMean(std::vector<float>{90, 120, 90}), {-10, 20, -10});
    expectNear(percentOfMean(std::vector<float>{-1, 1}), {0, 0});
}
