// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/trial_intervals.h"

#include "support/conditions.h"

#include <gtest/gtest.h>

namespace {

StimulationProtocol makeProtocol() {
    StimulationProtocol protocol;
    addCondition(protocol, "Rest", {{1, 9}});
    addCondition(protocol, "Left", {{10, 12}, {40, 42}});
    addCondition(protocol, "Right", {{60, 61}, {20, 25}, {40, 44}});
    return protocol;
}

IntervalHistogram histogramOf(const QStringList& conditions) {
    IntervalHistogram histogram;
    addIntervals(histogram, trialsOf(makeProtocol(), conditions));
    return histogram;
}

TEST(TrialIntervals, AreThoseOfTheProtocolInItsOrder) {
    const std::vector<Trial> trials = trialsOf(makeProtocol(), {"Right", "Left", "Other"});
    QStringList texts;
    for (const Trial& trial : trials)
        texts << QStringLiteral("%1 %2 %3 %4")
                     .arg(trial.condition)
                     .arg(trial.number)
                     .arg(trial.start)
                     .arg(trial.duration());
    EXPECT_EQ(texts, (QStringList{"Left 1 10 2", "Left 2 40 2", "Right 1 60 1", "Right 2 20 5",
                                  "Right 3 40 4"}));
    EXPECT_TRUE(hasConditions(makeProtocol(), {"Right", "Left"}));
    EXPECT_FALSE(hasConditions(makeProtocol(), {"Right", "Other"}));
}

TEST(TrialIntervals, AreCountedOverConditionsAndRuns) {
    IntervalHistogram histogram = histogramOf({"Left", "Right"}); // at 10, 20, 40, 60
    EXPECT_EQ(histogram, (IntervalHistogram{{10, 1}, {20, 2}}));
    addIntervals(histogram, {{"Left", 1, 5, 6}, {"Left", 2, 15, 16}});
    EXPECT_EQ(histogram, (IntervalHistogram{{10, 2}, {20, 2}}));
}

TEST(TrialIntervals, SuggestTheWindow) {
    const TrialOptions options{.preOnset = 3, .postOnset = 17};
    const WindowSuggestion both = suggestedWindow(histogramOf({"Left", "Right"}), options);
    EXPECT_EQ(both.postOnset, 6);
    EXPECT_EQ(
        both.report,
        (QStringList{
            "Histogram of distances (intervals) between consecutive trial onsets:",
            "Interval: 10  Frequency: 1", "Interval: 20  Frequency: 2",
            "The \"Post-onset\" value has been set to \"6\" using the smallest interval between "
            "successive trial onsets (\"10\").",
            "The interval with the highest frequency was \"20\". If you would like to use this "
            "interval, change the \"Post-onset\" value to 16. Note, however, that this may result "
            "in overlapping trial windows, which should be avoided."}));
    const WindowSuggestion left = suggestedWindow(histogramOf({"Left"}), options);
    EXPECT_EQ(left.postOnset, 26);
    EXPECT_EQ(left.report.size(), 3);
    // Of two that are equally frequent the smaller one counts.
    EXPECT_EQ(suggestedWindow({{10, 2}, {20, 2}}, options).report.size(), 4);

    const WindowSuggestion none = suggestedWindow(histogramOf({"Rest"}), options);
    EXPECT_EQ(none.postOnset, 17);
    EXPECT_EQ(none.report.size(), 1);
    EXPECT_EQ(suggestedWindow({{2, 1}}, options).postOnset, 0);
    const WindowSuggestion far = suggestedWindow({{1000002, 1}}, options);
    EXPECT_EQ(far.postOnset, 999);
    EXPECT_TRUE(far.report[2].endsWith("(\"1000000\")."));
}

} // namespace
