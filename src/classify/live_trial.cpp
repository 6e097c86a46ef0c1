// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/live_trial.h"

#include <algorithm>

LiveOptions defaultLiveOptions() {
    LiveOptions options;
    options.trial.preOnset = options.pointPreOnset;
    options.trial.postOnset = 8;
    options.trial.zNormalization = true;
    return options;
}

void takeTrialSettings(const TrialOptions& settings, LiveOptions& options) {
    options.trial = settings;
    options.trial.response = TrialResponse::StandardTwoGamma;
    if (settings.estimate == TrialEstimate::PercentBeta)
        options.trial.zNormalization = false;
    options.pointPreOnset = settings.preOnset;
}

QStringList trialSettingsReport(const TrialOptions& options) {
    const auto line = [](const char* text, int value) { return QString(text).arg(value); };
    QStringList lines{
        line("Adding linear predictor:                   %1", options.linearTrend),
        line("Using trial duration for data window:      %1", options.useTrialDuration),
        line("Data window pre-onset:                     %1", options.preOnset),
        line(options.useTrialDuration ? "Data window post-trial:                    %1"
                                      : "Data window post-onset:                    %1",
             options.postOnset)};
    switch (options.estimate) {
    case TrialEstimate::TValue:
        lines << "Estimating trial responses as t values";
        break;
    case TrialEstimate::Beta:
        lines << "Estimating trial responses as beta values";
        break;
    case TrialEstimate::PercentBeta:
        lines << "Estimating trial responses as percent change values";
        break;
    }
    if (options.zNormalization)
        lines << "Trial time courses will be z normalized";
    lines << line(
        "Voxels will be excluded (estimated value set to 0) if intensities lower than: %1",
        options.intensityLimit);
    return lines;
}

CurrentTrial currentTrial(const StimulationProtocol& protocol, int volume) {
    CurrentTrial trial;
    if (protocol.resolutionOfTime != ResolutionOfTime::Volumes)
        return trial;
    constexpr int longest = 1000000; // volumes; no run has as many
    for (int condition = 1; condition < protocol.nrOfConditions(); ++condition) {
        const ProtocolCondition& intervals = protocol.conditions[size_t(condition)];
        for (size_t i = 0; i < size_t(intervals.nrOfIntervals); ++i) {
            const int start = intervals.from[i];
            if (start <= volume + 1 && start >= trial.onset)
                trial = {start, std::clamp(intervals.to[i], start, start + longest), condition};
        }
    }
    return trial;
}

std::optional<LiveWindow> windowAtEndOfTrial(const CurrentTrial& trial, const TrialOptions& options,
                                             int volume, int nrOfVolumes, float TR) {
    const int duration = trial.duration();
    const int points = pointsOfWindow(options, duration);
    if (points >= nrOfVolumes || trial.onset == 0 ||
        volume < trial.onset + volumesAfterOnset(options, duration) - 1)
        return {};
    return LiveWindow{windowVolumes(trial.onset - options.preOnset, points, volume + 1),
                      trialDesign(options, duration, TR)};
}

std::optional<LiveWindow> windowWithinCondition(const CurrentTrial& trial,
                                                const LiveOptions& options, int volume,
                                                int nrOfVolumes) {
    const int delay = options.haemodynamicDelay;
    const int checked = options.pointPreOnset + options.postCondition + delay + 1 +
                        (options.trial.useTrialDuration ? trial.duration() : 0);
    if (checked >= nrOfVolumes || trial.onset == 0 || volume < trial.onset - 1 + delay ||
        volume > trial.end + options.postCondition - 1 + delay)
        return {};
    const int before = options.pointPreOnset + delay;
    LiveWindow window{windowVolumes(trial.onset - options.pointPreOnset - 1, before, volume + 1),
                      lastPointDesign(before + 1, options.trial)};
    window.volumes.push_back(volume);
    return window;
}
