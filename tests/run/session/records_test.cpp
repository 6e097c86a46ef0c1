// What a journal keeps of the operator's choices comes back whole or not at all.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/session/classifier_records.h"
#include "run/session/decoder_records.h"
#include "run/session/feedback_records.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace {

/// What `decode` gives of the whole content, and of no part of it.
template<typename Decode> auto wholeOrNothing(const QByteArray& content, const Decode& decode) {
    for (qsizetype length = 0; length < content.size(); ++length)
        EXPECT_FALSE(decode(content.left(length))) << length;
    EXPECT_FALSE(decode(char(2) + content.mid(1))) << "of a later version";
    return decode(content);
}

/// Nothing is as at first, but for the baseline's condition, which never changes.
RecordedFeedback changedFeedback() {
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

TEST(SessionRecords, ChoicesOfTheFeedback) {
    for (const RecordedFeedback& recorded : {changedFeedback(), RecordedFeedback()}) {
        const auto back = wholeOrNothing(encodedFeedback(recorded), decodedFeedback);
        ASSERT_TRUE(back);
        EXPECT_EQ(back->choices, recorded.choices);
        EXPECT_EQ(back->delayed, recorded.delayed);
    }
    std::array<RecordedFeedback, 10> wrong; // numbers that the controls don't give
    wrong.fill(changedFeedback());
    wrong[0].choices.roiMode = nrOfROIModes;
    wrong[1].choices.roiMode = -2;
    wrong[2].choices.type = FeedbackType(5);
    wrong[3].choices.MaxPSC[2] = NAN;
    wrong[4].choices.NrOfPastValues = -1;
    wrong[5].choices.DisplayBaseLevel = 11;
    wrong[6].choices.NoFbCondition = -2;
    wrong[7].choices.NoFbStopShift = -1;
    wrong[8].choices.BaselineEndShift = std::numeric_limits<int>::max();
    wrong[9].delayed->ScaleFactor = INFINITY;
    for (const RecordedFeedback& recorded : wrong)
        EXPECT_FALSE(decodedFeedback(encodedFeedback(recorded)));
}

TEST(SessionRecords, ChoicesOfTheClassifier) {
    RecordedClassifier recorded{defaultLiveOptions(), "/m.svm", "/v.txt", true};
    recorded.options.trial.estimate = TrialEstimate::Beta;
    recorded.options.mode = PredictionMode::Continuous;
    recorded.options.postCondition = 5;
    recorded.options.trial.useTrialDuration = recorded.options.trial.linearTrend = true;
    const auto back = wholeOrNothing(encodedClassifier(recorded), decodedClassifier);
    ASSERT_TRUE(back);
    EXPECT_EQ(back->options, recorded.options);
    EXPECT_EQ(back->modelPath, "/m.svm");
    EXPECT_EQ(back->voxelsPath, "/v.txt");
    EXPECT_TRUE(back->isPredicting);
    recorded.options.haemodynamicDelay = 1000;
    EXPECT_FALSE(decodedClassifier(encodedClassifier(recorded)));
}

TEST(SessionRecords, PreparationOfTheLetterDecoder) {
    DecoderSettings settings = defaultDecoderSettings();
    settings.NrOfDataROIs = 4;
    settings.NrOfTimePoints = 420;
    settings.UseBeta = false;
    settings.ABCDMode = true;
    settings.CorrBetaTau = 0.3f;
    settings.TaskVOIWeights[1][4] = 0.123456789f;
    settings.TimerInterval = 7; // not recorded
    DecoderSettings start;
    start.TimerInterval = 7;
    const auto decode = [&](const QByteArray& content) { return decodedDecoder(content, start); };
    const auto back = wholeOrNothing(encodedDecoder({settings, "/r.rtc"}), decode);
    ASSERT_TRUE(back);
    EXPECT_EQ(back->referencesPath, "/r.rtc");
    EXPECT_EQ(back->settings, settings);
    std::array<DecoderSettings, 5> wrong;
    wrong.fill(settings);
    wrong[0].NrOfDataROIs = 2;
    wrong[1].NrOfDataROIs = 7;
    wrong[2].NrOfTimePoints = -1;
    wrong[3].CorrBetaTau = 2.0f;
    wrong[4].TaskVOIWeights[2][5] = NAN;
    for (const DecoderSettings& changed : wrong)
        EXPECT_FALSE(decode(encodedDecoder({changed, {}})));
}
