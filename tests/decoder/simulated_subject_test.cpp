// What the decoder reads of simulated subjects at stated contrast-to-noise.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "decoder/simulated_subject.h"

#include "decoder/empirical_responses.h"
#include "decoder/ideal_responses.h"

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

// Of 540 letters; the limits are some spreads beside the shares that bench_letters counts.
TEST(SimulatedSubject, LettersAreReadAsWellAsTheNoiseAllows) {
    const std::tuple<double, int, int> cases[] = {{2.0, 530, 539}, {0.5, 185, 245}};
    for (const auto& [contrastToNoise, least, most] : cases)
        for (const bool useBeta : {true, false}) {
            int correct = 0;
            for (uint64_t seed = 1; seed <= 20; ++seed) {
                const ROICurves curves =
                    subjectCurves(subjectOptions(allLetters, 0, seed), contrastToNoise);
                correct += correctLetters(allLetters,
                                          decodedText(scores(useBeta), idealReferences(), curves));
            }
            EXPECT_GE(correct, least) << contrastToNoise << useBeta;
            EXPECT_LE(correct, most) << contrastToNoise << useBeta;
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
        EXPECT_GE(correctWith(*own), 22);
    }
}

} // namespace
