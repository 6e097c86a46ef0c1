// Curves of regions as a scanner measures their means, without images: the simulator's subject,
// whose responses are computed apart from those of the program.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "decoder/letter_decoder.h"
#include "run/protocol/stimulation_protocol.h"
#include "scanner_simulator/mental_tasks.h"
#include "scanner_simulator/random_numbers.h"

/// A subject who spells a text (with `trials` 0) or trains. The response is 1 % of the signal.
[[nodiscard]] inline SimulationOptions subjectOptions(const QString& text, int trials,
                                                      uint64_t seed) {
    SimulationOptions options;
    options.repetitionTime = repetitionTimeOfTasks;
    options.nrOfVolumesToSkip = 0;
    options.amplitude = 0.01;
    options.spelledText = text;
    options.trainingTrials = trials;
    options.nrOfVolumes = volumesOfTasks(options);
    options.seed = seed;
    return options;
}

/// Three regions of tasks, then the helpers. Noise is white; its standard deviation is that of the
/// response to a task that lasts, divided by `contrastToNoise`. The drift is that of the simulator
/// with, in each region, a slow wave of a quarter of the response.
[[nodiscard]] inline ROICurves subjectCurves(const SimulationOptions& options,
                                             double contrastToNoise) {
    constexpr double base = 1000.0;
    constexpr double turnsPerSecond = 1.0 / 300.0;
    constexpr double fullTurn = 2.0 * std::numbers::pi;
    const SimulatedDynamics dynamics(options);
    RandomNumbers random(options.seed);
    ROICurves curves;
    for (size_t roi = 0; roi < curves.size(); ++roi) {
        const double phase = random.uniform();
        for (int volume = 0; volume < options.nrOfVolumes; ++volume) {
            const double seconds = (volume + 0.5) * options.repetitionTime / 1000.0;
            const double wave = 0.25 * std::sin(fullTurn * (seconds * turnsPerSecond + phase));
            const double noise = double(random.gaussian()) / contrastToNoise;
            curves[roi].push_back(float(
                base * (1.0 + dynamics.drift(seconds) +
                        options.amplitude * (dynamics.response(roi, seconds) + wave + noise))));
        }
    }
    return curves;
}

[[nodiscard]] inline StimulationProtocol subjectProtocol(const SimulationOptions& options) {
    StimulationProtocol protocol;
    for (const SimulatedCondition& condition : taskProtocol(options)) {
        const int index = protocol.conditionIndex(condition.name);
        for (const ProtocolInterval& interval : condition.intervals)
            protocol.addInterval(index, interval.from, interval.to);
    }
    return protocol;
}

/// The text as a decoder with these settings and responses reads it.
[[nodiscard]] inline QString
decodedText(DecoderSettings settings, const ReferenceCurves& references, const ROICurves& curves) {
    settings.NrOfTimePoints = int(curves[0].size());
    settings.TaskVOIWeights = scaledWeights(settings.TaskVOIWeights);
    LetterDecoder decoder;
    decoder.begin(settings, references, LetterDecoder::Source::File);
    for (int volume = 0; volume < settings.NrOfTimePoints; ++volume)
        if (decoder.takeVolume(volume))
            decoder.decode(curves);
    return decoder.decodedText(0);
}

[[nodiscard]] inline int correctLetters(const QString& text, const QString& decoded) {
    int correct = 0;
    for (qsizetype i = 0; i < std::min(text.size(), decoded.size()); ++i)
        correct += text[i] == decoded[i];
    return correct;
}
