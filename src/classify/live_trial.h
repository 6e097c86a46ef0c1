// Which trial a run is in, and whether it is time to estimate it.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "classify/trial_design.h"
#include "run/protocol/stimulation_protocol.h"

#include <QStringList>
#include <optional>

/// How a run is classified. Continuous can be chosen, and predicts nothing.
enum class PredictionMode { EndOfTrial, WithinCondition, Continuous };

/// The choices of the operator for a run; volumes are 0 to mostWindowVolumes.
struct LiveOptions {
    PredictionMode mode = PredictionMode::WithinCondition;
    TrialOptions trial;        ///< of EndOfTrial; its estimate counts for both modes
    int pointPreOnset = 1;     ///< of WithinCondition: volumes before the onset
    int haemodynamicDelay = 2; ///< volumes after the onset until the first prediction
    int postCondition = 0;     ///< volumes after the delayed end that are predicted too

    bool operator==(const LiveOptions&) const = default;
};
/// Pre-onset 1, post-onset 8, t values, z normalization.
[[nodiscard]] LiveOptions defaultLiveOptions();
/// Takes the settings of an estimation for both modes, with what a run does not know put right: it
/// has the standard response only, and never normalizes windows for percent changes.
void takeTrialSettings(const TrialOptions& settings, LiveOptions& options);
/// How trials are estimated, in lines for the log.
[[nodiscard]] QStringList trialSettingsReport(const TrialOptions& options);

/// The trial that counts at a volume.
struct CurrentTrial {
    int onset = 0; ///< as the protocol states it; 0 for none
    int end = 0;
    int condition = 0; ///< from 0 in the protocol; the first one is the baseline
    [[nodiscard]] int duration() const { return trialDuration(onset, end); }
};
/// Of all conditions but the first, the trial that began last: its start - 1 is not after the
/// volume (index from 0). Of several that begin together the last one in the protocol counts. None
/// where the protocol is in milliseconds.
[[nodiscard]] CurrentTrial currentTrial(const StimulationProtocol& protocol, int volume);

/// What a step estimates: the volumes of its window, and the design that fits it.
struct LiveWindow {
    std::vector<int> volumes; ///< indices from 0
    TrialDesign design;
};
/// At the end of a trial: the window from pre volumes before the onset to post behind it, once all
/// of it but the last volume is measured; the missing one repeats the last. Nothing when the step
/// has nothing to do: no trial, a window that isn't shorter than the run, or volumes to come.
/// `TR` in milliseconds.
[[nodiscard]] std::optional<LiveWindow> windowAtEndOfTrial(const CurrentTrial& trial,
                                                           const TrialOptions& options, int volume,
                                                           int nrOfVolumes, float TR);
/// Within a condition: the first points run from onset - pre - 1 on, the last one is this volume.
/// Nothing when it is not from the delay after the onset to the delay and `post` after the end.
[[nodiscard]] std::optional<LiveWindow> windowWithinCondition(const CurrentTrial& trial,
                                                              const LiveOptions& options,
                                                              int volume, int nrOfVolumes);
