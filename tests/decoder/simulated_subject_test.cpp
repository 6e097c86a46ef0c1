// What the decoder reads of simulated subjects at stated contrast-to-noise.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "decoder/simulated_subject.h"

#include "decoder/decoder_files.h"
#include "decoder/empirical_responses.h"

namespace {

const QString allLetters = QStringLiteral("_ABCDEFGHIJKLMNOPQRSTUVWXYZ");

ReferenceCurves idealReferences() {
    return idealResponses(defaultDecoderSettings().IdealResponseWindowSize, 70000.0 / 42);
}

DecoderSettings scores(bool useBeta) {
    DecoderSettings settings = defaultDecoderSettings();
    settings.UseBeta = useBeta;
    return settings;
}

TEST(SimulatedSubject, AllLettersAreReadAtAContrastOfTwice) {
    const ROICurves curves = subjectCurves(subjectOptions(allLetters, 0, 1), 2.0);
    EXPECT_EQ(decodedText(scores(true), idealReferences(), curves), allLetters);
}

// Of 540 letters; bench_letters has the shares of many more, from which the limits are.
TEST(SimulatedSubject, LettersAreReadAsWellAsTheNoiseAllows) {
    const struct {
        double contrastToNoise;
        bool useBeta;
        int least, most;
    } cases[] = {{2.0, true, 0, 0}, {2.0, false, 0, 0}, {0.5, true, 0, 0}, {0.5, false, 0, 0}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.contrastToNoise);
        int correct = 0;
        for (uint64_t seed = 1; seed <= 20; ++seed) {
            const ROICurves curves =
                subjectCurves(subjectOptions(allLetters, 0, seed), c.contrastToNoise);
            correct +=
                correctLetters(allLetters, decodedText(scores(c.useBeta), idealReferences(), curves));
        }
        EXPECT_GE(correct, c.least);
        EXPECT_LE(correct, c.most);
    }
}

TEST(SimulatedSubject, ASlowOneIsReadBetterWithResponsesOfItsOwn) {
    SimulationOptions training = subjectOptions({}, 3, 5);
    SimulationOptions spelling = subjectOptions(allLetters, 0, 6);
    training.responseDelay = spelling.responseDelay = 4.0; // seconds
    const ROICurves curves = subjectCurves(spelling, 2.0);
    const auto correctWith = [&](const ReferenceCurves& references) {
        return correctLetters(allLetters, decodedText(scores(true), references, curves));
    };
    EXPECT_LE(correctWith(idealReferences()), 18);
    for (const ResponseROIs rois : {ResponseROIs::Tasks, ResponseROIs::All}) {
        const auto own =
            empiricalResponses({.rois = rois}, subjectCurves(training, 2.0),
                               subjectProtocol(training), double(training.repetitionTime));
        ASSERT_TRUE(own);
        printf("%d\n", correctWith(*own));
        EXPECT_GE(correctWith(*own), 22);
    }
}

} // namespace
