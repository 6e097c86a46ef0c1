// Correct letters against contrast-to-noise, and what the decoder adds to the time of a volume.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "decoder/ideal_responses.h"
#include "decoder/simulated_subject.h"
#include "processor_time.h"
#include "run/document/qt_cortivo_doc.h"
#include "run/document/run_report.h"
#include "run/document/session_phase.h"
#include "run/session/session_decoder.h"
#include "run/settings/run_settings.h"

#include <QTemporaryDir>
#include <clocale>
#include <cstdio>

namespace {

constexpr double windowMilliseconds = 70000.0;

/// All 27 symbols in random order.
QString shuffledText(RandomNumbers& random) {
    QString text = "_ABCDEFGHIJKLMNOPQRSTUVWXYZ";
    for (qsizetype i = text.size(); i > 1; --i)
        std::swap(text[i - 1], text[qsizetype(random.bits() % uint64_t(i))]);
    return text;
}

ReferenceCurves idealReferences() {
    const DecoderSettings settings = defaultDecoderSettings();
    return idealResponses(settings.IdealResponseWindowSize,
                          windowMilliseconds / settings.FullWindowSize);
}

DecoderSettings settingsOf(bool useBeta, bool weighsHelpers) {
    DecoderSettings settings = defaultDecoderSettings();
    settings.UseBeta = useBeta;
    if (!weighsHelpers)
        settings.TaskVOIWeights = {{{1}, {0, 1}, {0, 0, 1}}};
    return settings;
}

void printCorrectLetters(int nrOfTexts) {
    struct Way {
        DecoderSettings settings;
        int letters = 0; ///< correct ones
        int texts = 0;   ///< without a mistake
    };
    std::printf("Correct letters and texts without a mistake, in percent of %d texts of 27 symbols "
                "in random order; by chance %.1f of the letters\n"
                "        both scores     correlation   weights of the task ROIs alone, letters\n"
                "CNR   letters   texts  letters   texts   both scores  correlation\n",
                nrOfTexts, 100.0 / LetterCode::nrOfLetters);
    const ReferenceCurves references = idealReferences();
    for (const double cnr : {0.1, 0.2, 0.35, 0.5, 0.7, 1.0, 1.4, 2.0, 3.0, 4.0}) {
        Way ways[] = {{settingsOf(true, true)},
                      {settingsOf(false, true)},
                      {settingsOf(true, false)},
                      {settingsOf(false, false)}};
        RandomNumbers random(27);
        for (int i = 0; i < nrOfTexts; ++i) {
            const QString text = shuffledText(random);
            const ROICurves curves = subjectCurves(subjectOptions(text, 0, random.bits()), cnr);
            for (Way& way : ways) {
                const int correct =
                    correctLetters(text, decodedText(way.settings, references, curves));
                way.letters += correct;
                way.texts += correct == LetterCode::nrOfLetters;
            }
        }
        const double all = nrOfTexts / 100.0;
        const auto letters = [&](int i) { return ways[i].letters / all / LetterCode::nrOfLetters; };
        std::printf("%-4g  %7.2f %7.1f  %7.2f %7.1f  %12.2f %12.2f\n", cnr, letters(0),
                    ways[0].texts / all, letters(1), ways[1].texts / all, letters(2), letters(3));
    }
}

/// Its pictures are as small as can be.
class SilentScreen : public DecoderScreen {
public:
    void log(const QString&) override {}
    void refresh() override {}
    [[nodiscard]] QImage letterDisplay() override { return windowPicture(); }
    [[nodiscard]] QImage windowPicture() override { return {1, 1, QImage::Format_RGB32}; }
};

void printTimes(const char* name, std::vector<double> times) {
    if (times.empty())
        std::printf("%-24s none\n", name);
    else
        std::printf("%-24s %8.3f %8.3f\n", name, median(times), std::ranges::max(times));
}

/// A run of 100 letters with its regions.
void printTimesOfVolumes() {
    const SimulationOptions options = subjectOptions(QString("VELO").repeated(25), 0, 1);
    const ROICurves curves = subjectCurves(options, 1.0);
    const QTemporaryDir folder;
    RunSettings settings;
    settings.TargetFolder = folder.path() + '/';
    settings.FeedbackTargetFolder = settings.TargetFolder + "feedback/";
    settings.projectBaseName = "bench";
    settings.NrOfVolumes = options.nrOfVolumes;
    settings.NrOfVolumesToSkip = 0;
    SessionPhase phase;
    const RunReport report;
    RunListeners listeners;
    SessionDecoder decoder({settings, phase, report, listeners});
    QtCortivoDoc document(QtCortivoDoc::Kind::Functional);
    document.project.NrOfVolumes = options.nrOfVolumes;
    for (const std::vector<float>& curve : curves) {
        RegionOfInterest& region = document.regions.add({});
        region.TimeCourseValues = curve;
        region.CurrentTimePoint = options.nrOfVolumes - 1;
    }
    listeners.documentsArrived(document);
    listeners.runPrepared(document);
    SilentScreen screen;
    decoder.open(screen);
    DecoderPreparation preparation = decoder.preparation();
    preparation.referencesPath = folder.filePath("own.rtc");
    if (!writeReferences(idealReferences(), preparation.referencesPath) ||
        !decoder.prepare(preparation)) {
        std::puts("The decoder could not be prepared");
        return;
    }
    const PhaseScope recording(phase, Phase::Recording);
    std::vector<double> withLetter, without;
    for (int volume = 0; volume < options.nrOfVolumes; ++volume) {
        const qsizetype before = decoder.decoder().decodedText(0).size();
        const double time = milliseconds([&] {
            static_cast<void>(listeners.atStep(VolumeStep::LetterDecoder, {document, volume}));
        });
        (decoder.decoder().decodedText(0).size() > before ? withLetter : without).push_back(time);
    }
    std::printf("\nThe decoder's step of a volume, a run of %d volumes; milliseconds of processor "
                "time, budget 10, without the drawing of its window\n%-24s %8s %8s\n",
                options.nrOfVolumes, "", "median", "longest");
    printTimes("no letter", without);
    printTimes("a letter, with its log", withLetter);
    decoder.close();
}

} // namespace

int main(int argc, char** argv) {
    std::setlocale(LC_NUMERIC, "C");
    printCorrectLetters(argc > 1 ? std::max(std::atoi(argv[1]), 1) : 400);
    printTimesOfVolumes();
}
