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
    /// The baseline of each trial is its own; otherwise the mean over the baselines of all trials
    /// of all conditions.
    bool epochBased = true;
};

/// One condition's average; index 0 of the curves is `before` volumes before the onset.
struct ConditionAverage {
    QString name;
    RgbColor color;
    std::vector<float> mean;          ///< change from the baseline; 0 where no trial counts
    std::vector<float> standardError; ///< of the mean; 0 where only one trial counts
    std::vector<int> trials;          ///< that count at each volume
};

enum class AveragingResult { Ok, TooManyTrials };
inline constexpr int maximumTrials = 2000; ///< of all conditions together

/// The averages of all conditions that have a trial in the curve, except those named "baseline" or
/// "rest", in any case; in protocol order. `TR` in milliseconds.
///
/// Each interval is a trial. Its onset is the first volume that conditionAtVolume() takes as lying
/// in it: from - 1 in volumes, in milliseconds the first volume that starts in it; an interval
/// between the starts of two volumes has none. A trial counts if its onset and at least one volume
/// of its baseline lie in the curve and, for percentages, its baseline is not 0. Its baseline is
/// the mean over those volumes. Where its window runs beyond either end of the curve, it counts at
/// the volumes that there are. Each value is the change from the baseline: v - b, or (v - b) / b *
/// 100. The standard error is the standard deviation (n - 1) over the trials that count at this
/// volume, divided by the square root of their number.
///
/// With more than maximumTrials trials that would count, nothing is averaged.
[[nodiscard]] AveragingResult averageTrials(std::span<const float> values,
                                            const StimulationProtocol& protocol, float TR,
                                            const AveragingWindow& window,
                                            std::vector<ConditionAverage>& averages);
