// Delayed feedback: one number for each trial, from a small model over a window around its onset.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/protocol/stimulation_protocol.h"
#include "stats/hrf.h"

#include <QByteArray>
#include <QString>
#include <optional>
#include <span>

/// Bounds of the settings are at most this far from the onset.
inline constexpr int largestDelayedVolume = 999;

/// In volumes from the onset of a trial, unless said otherwise.
struct DelayedFeedbackSettings {
    int condition = -1; ///< whose intervals are the trials; from 0
    int BaselineFrom = -8;
    int BaselineTo = -1; ///< shown, but not used by the estimate
    int ModulationFrom = 0;
    int ModulationTo = 10;
    int UpdateFeedbackFile = 15;                              ///< when the number is written
    double ScaleFactor = 10.0;                                ///< times the percent signal change
    QString fileName = QStringLiteral("DelayedFeedback.txt"); ///< in the feedback folder

    bool operator==(const DelayedFeedbackSettings&) const = default;
};

/// The condition that is chosen at first: the second one if there is one, else the first; -1
/// without conditions.
[[nodiscard]] int firstTrialCondition(int nrOfConditions);
/// The condition was chosen: the window covers its first interval and 8 seconds more, and the
/// number is written one volume later, both limited to largestDelayedVolume. Without an interval,
/// or a TR (milliseconds), nothing changes.
void fitWindowToCondition(DelayedFeedbackSettings& settings, const ProtocolCondition& condition,
                          float TR);
/// Why these settings can't be used, for the operator; empty when they can: the modulation must not
/// end behind the volume of the update or before it begins, nor begin before the baseline does; a
/// file needs a name without a folder.
[[nodiscard]] QString delayedFeedbackFault(const DelayedFeedbackSettings& settings);

struct DueTrial {
    int index = 0; ///< of the interval, from 0
    int onset = 0; ///< volume, as the interval gives it, less the skipped ones
};
/// The trial whose number is written at this volume: the latest one with an onset before it, if
/// that lies exactly UpdateFeedbackFile volumes back.
[[nodiscard]] std::optional<DueTrial> dueTrial(const DelayedFeedbackSettings& settings,
                                               const StimulationProtocol& protocol,
                                               int nrOfSkippedVolumes, int volume);

/// Percent signal change of the trial: the beta of the box from the start of the modulation to the
/// end of the window, convolved with the response in volumes of `TR` milliseconds, over the
/// constant of the same least-squares fit. A volume outside 0 to curve.size() - 1 counts as 0, and
/// then every value of exactly 0 takes the first value of the window that isn't. 0 for an empty
/// curve. The result is not finite where the constant is 0.
[[nodiscard]] double delayedPercentChange(const DelayedFeedbackSettings& settings,
                                          std::span<const float> curve, int onset,
                                          const TwoGammaHRFParams& hrf, float TR);

/// The line of the file: the trial, counted from 1, in width 3, a blank in width 3, the value in
/// width 12.
[[nodiscard]] QByteArray delayedFeedbackLine(int trial, double value);

/// Reads the conditions of a protocol in volumes for use before a run. False after a message, with
/// nothing loaded, when the file can't be read or is in milliseconds.
[[nodiscard]] bool readProtocolForDelayedFeedback(const QString& path,
                                                  StimulationProtocol& protocol);
