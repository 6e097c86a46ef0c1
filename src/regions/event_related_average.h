// The event-related average of a time course.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/rgb_color.h"
#include "run/protocol/stimulation_protocol.h"

#include <QString>
#include <span>
#include <vector>

/// How trials are cut, in volumes relative to the volume of the onset.
struct AveragingWindow {
    int before = 2;        ///< volumes shown before the onset
    int after = 10;        ///< volumes shown from the onset on, beside that of the onset itself
    int baselineFrom = -2; ///< first volume of the baseline
    int baselineTo = 0;    ///< last volume of the baseline
    bool percent = true;   ///< percent of the baseline, else the units of the data
    /// The baseline of each trial is its own; otherwise the mean over the baselines of all trials.
    bool epochBased = true;
};

/// One condition's average; index 0 of the curves is `before` volumes before the onset.
struct ConditionAverage {
    QString name;
    RgbColor color;
    std::vector<float> mean;
    std::vector<float> standardError; ///< 0 where only one trial counts
    std::vector<int> trials;          ///< that count at each volume
};

enum class AveragingResult { Ok, TooManyTrials };
inline constexpr int maximumTrials = 2000; ///< of all conditions together

/// The averages of all conditions that have a trial in the curve, except those named "baseline" or
/// "rest", in any case. Volumes outside the curve don't count; a trial without any volume of its
/// baseline doesn't either. `TR` in milliseconds.
[[nodiscard]] AveragingResult averageTrials(std::span<const float> values,
                                            const StimulationProtocol& protocol, float TR,
                                            const AveragingWindow& window,
                                            std::vector<ConditionAverage>& averages);
