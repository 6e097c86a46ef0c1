// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/session/feedback_records.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace {

/// Nothing is as at first, but for the baseline's condition, which never changes.
RecordedFeedback changed() {
    FeedbackChoices choices;
    choices.roiMode = useROI2And3;
    choices.type = FeedbackType::Delayed;
    choices.UseSVMOutput = choices.BlockOutput = choices.VisualizeROIs = true;
    choices.MaxPSC = {0.5f, 3.25f, 100.0f};
    choices.SetToMaxValue = choices.UseTCGLMB0ForBaseline = choices.ShowValues = true;
    choices.ShowConditionNameAsInstruction = false;
    choices.NrOfPastValues = 5;
    choices.DisplayBaseLevel = 10;
    choices.NoFbCondition = 2;
    choices.NoFbStartShift = 7;
    choices.NoFbStopShift = 8;
    choices.BaselineStartShift = 9;
    choices.BaselineEndShift = 11;
    return {choices, DelayedFeedbackSettings{1, -6, -2, 1, 12, 14, -2.5, "trials.txt"}};
}

} // namespace

TEST(FeedbackRecords, ChoicesComeBack) {
    for (const RecordedFeedback& recorded : {changed(), RecordedFeedback()}) {
        const QByteArray content = encodedFeedback(recorded);
        const std::optional<RecordedFeedback> back = decodedFeedback(content);
        ASSERT_TRUE(back);
        EXPECT_EQ(back->choices, recorded.choices);
        EXPECT_EQ(back->delayed, recorded.delayed);
        for (qsizetype length = 0; length < content.size(); ++length)
            EXPECT_FALSE(decodedFeedback(content.left(length))) << length;
        EXPECT_FALSE(decodedFeedback(char(2) + content.mid(1))); // of a later version
    }
}

TEST(FeedbackRecords, NumbersThatTheControlsDoNotGiveAreRefused) {
    using Change = void (*)(RecordedFeedback&);
    for (const Change change : {
             Change([](RecordedFeedback& recorded) { recorded.choices.roiMode = nrOfROIModes; }),
             Change([](RecordedFeedback& recorded) { recorded.choices.roiMode = -2; }),
             Change([](RecordedFeedback& recorded) { recorded.choices.type = FeedbackType(5); }),
             Change([](RecordedFeedback& recorded) { recorded.choices.MaxPSC[2] = NAN; }),
             Change([](RecordedFeedback& recorded) { recorded.choices.NrOfPastValues = -1; }),
             Change([](RecordedFeedback& recorded) { recorded.choices.DisplayBaseLevel = 11; }),
             Change([](RecordedFeedback& recorded) { recorded.choices.NoFbCondition = -2; }),
             Change([](RecordedFeedback& recorded) { recorded.choices.NoFbStopShift = -1; }),
             Change([](RecordedFeedback& recorded) {
                 recorded.choices.BaselineEndShift = std::numeric_limits<int>::max();
             }),
             Change([](RecordedFeedback& recorded) { recorded.delayed->ScaleFactor = INFINITY; }),
         }) {
        RecordedFeedback recorded = changed();
        change(recorded);
        EXPECT_FALSE(decodedFeedback(encodedFeedback(recorded)));
    }
}
