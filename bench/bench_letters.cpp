// Correct letters against contrast-to-noise, and the time that the decoder takes of a volume.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "decoder/simulated_subject.h"
#include "processor_time.h"
#include "run/document/qt_cortivo_doc.h"
#include "run/document/run_report.h"
#include "run/document/session_phase.h"
#include "run/session/session_decoder.h"
#include "run/settings/run_settings.h"

#include <QTemporaryDir>
#include <algorithm>
#include <clocale>
#include <cstdio>

namespace {

constexpr double secondsPerWindow = 70.0;

/// All 27 symbols in random order.
QString shuffledText(RandomNumbers& random) {
    QString text = "_ABCDEFGHIJKLMNOPQRSTUVWXYZ";
    for (qsizetype i = text.size(); i > 1; --i)
        std::swap(text[i - 1], text[qsizetype(random.bits() % uint64_t(i))]);
    return text;
}

ReferenceCurves idealOf(const DecoderSettings& settings) {
    return idealResponses(settings.IdealResponseWindowSize,
                          secondsPerWindow * 1000.0 / settings.FullWindowSize);
}

DecoderSettings settingsOf(bool useBeta, float helperWeight) {
    DecoderSettings settings = defaultDecoderSettings();
    settings.UseBeta = useBeta;
    for (size_t task = 0; task < LetterCode::nrOfTasks; ++task)
        settings.TaskVOIWeights[task][nrOfTaskROIs + task] = helperWeight;
    settings.TaskVOIWeights = scaledWeights(settings.TaskVOIWeights);
    return settings;
}

void printCorrectLetters(int nrOfTexts) {
    const DecoderSettings ways[] = {settingsOf(true, 0.0f), settingsOf(false, 0.0f),
                                    settingsOf(true, 1.0f), settingsOf(false, 1.0f)};
    std::printf("Correct letters in percent of %d, 27 symbols in random order; chance %.1f\n"
                "CNR    both  correlation  both, with helpers  correlation, with helpers\n",
                nrOfTexts * LetterCode::nrOfLetters, 100.0 / LetterCode::nrOfLetters);
    const ReferenceCurves references = idealOf(ways[0]);
    for (const double cnr : {0.1, 0.2, 0.35, 0.5, 0.7, 1.0, 1.4, 2.0, 3.0, 4.0}) {
        int correct[std::size(ways)] = {};
        RandomNumbers random(27);
        for (int i = 0; i < nrOfTexts; ++i) {
            const QString text = shuffledText(random);
            const ROICurves curves = subjectCurves(subjectOptions(text, 0, random.bits()), cnr);
            for (size_t way = 0; way < std::size(ways); ++way)
                correct[way] += correctLetters(text, decodedText(ways[way], references, curves));
        }
        std::printf("%-4g", cnr);
        for (const int count : correct)
            std::printf("  %6.2f", 100.0 * count / nrOfTexts / LetterCode::nrOfLetters);
        std::printf("\n");
    }
}

} // namespace

int main(int argc, char** argv) {
    std::setlocale(LC_NUMERIC, "C");
    printCorrectLetters(argc > 1 ? std::max(std::atoi(argv[1]), 1) : 100);
}
