// SPDX-License-Identifier: GPL-3.0-or-later
#include "decoder/decoder_settings.h"

namespace {

TEST(LetterCode, GoesThroughTasksThenOnsetsThenDurations) {
    const QString letters = QStringLiteral("_ABCDEFGHIJKLMNOPQRSTUVWXYZ");
    for (int i = 0; i < letters.size(); ++i) {
        const LetterCode code{i / 9, i % 9};
        EXPECT_EQ(letterOf(code), letters[i]);
        EXPECT_EQ(codeOf(letters[i]), code);
        EXPECT_EQ(codeOf(letters[i].toLower()), code);
    }
    EXPECT_EQ(codeOf(u' '), (LetterCode{0, 0}));
    for (const QChar other : {QChar(u'-'), QChar(u'1'), QChar(u'[')})
        EXPECT_FALSE(codeOf(other)) << int(other.unicode());
    for (const LetterCode& none : {LetterCode{-1, 0}, {3, 0}, {0, -1}, {0, 9}})
        EXPECT_EQ(letterOf(none), u'-');
}

TEST(DecoderSettings, ScalesWeightsToUnitLength) {
    const TaskWeights scaled = scaledWeights({{{3, 0, 4, 0, 0, 0}, {}, {-2, 0, 0, 0, 0, 0}}});
    const TaskWeights expected{{{0.6f, 0, 0.8f, 0, 0, 0}, {}, {-1, 0, 0, 0, 0, 0}}};
    EXPECT_EQ(scaled, expected);
}

TEST(DecoderSettings, OddWindowsAreNoTrap) {
    DecoderSettings settings;
    settings.NrOfTimePoints = 100;
    settings.FullWindowSize = 1;
    EXPECT_FALSE(windowEndsAt(settings, 0)); // the response of the first window runs on by a volume
    EXPECT_TRUE(windowEndsAt(settings, 1));
    EXPECT_FALSE(windowEndsAt(settings, 100));
    EXPECT_EQ(settings.nrOfComparedPoints(), 0);
    settings.FullWindowSize = 0;
    EXPECT_FALSE(windowEndsAt(settings, 50));
    EXPECT_FALSE(windowIsWhole(settings, -1));
    settings.FullWindowSize = 2147483647;
    EXPECT_FALSE(windowIsWhole(settings, 2147483647));
    EXPECT_EQ(settings.nrOfComparedPoints(), 40);
}

TEST(LetterCode, StagesOfALetter) {
    DecoderSettings settings; // 42 volumes of 70 s
    settings.SkipTimePointsAtBegin = 3;
    // Three volumes of cue, five stages of six, and the rest.
    const std::pair<int, int> stages[] = {{-1, -1}, {2, -1}, {3, -1}, {5, -1}, {6, 0},   {11, 0},
                                          {12, 1},  {35, 4}, {36, 5}, {44, 5}, {45, -1}, {48, 0}};
    for (const auto& [volume, stage] : stages)
        EXPECT_EQ(stageAt(settings, volume), stage) << volume;
    settings.SkipAtBeginOfWindow = 0;
    EXPECT_EQ(stageAt(settings, 3), 0);
    for (int stage = -1; stage < LetterCode::nrOfStages; ++stage) {
        EXPECT_EQ(codeOf('E')->isPerformedIn(stage), stage >= 1 && stage <= 3) << stage;
        EXPECT_EQ(codeOf('_')->isPerformedIn(stage), stage == 0) << stage;
    }
}

} // namespace
