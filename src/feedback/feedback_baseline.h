// The signal that the feedback rests on, and where its baseline comes from.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "feedback/feedback_levels.h"

/// One value for each thermometer; with a single one the second is 0.
struct SignalPair {
    double first = 0.0;
    double second = 0.0;
};

/// The signal of the chosen regions at a volume: the two of a pair of thermometers, else the value
/// of the region or the mean of two or three; of all three without a mode. What isn't there is 0,
/// as is a mean that misses a region.
[[nodiscard]] SignalPair signalAt(const FeedbackSignals& signals, const FeedbackChoices& choices,
                                  int volume);

/// The constant of the regions' models, combined in the same way; 0 up to volume 5, without
/// confounds, and as long as one of the regions has no fit.
[[nodiscard]] SignalPair modelBaseline(const FeedbackSignals& signals,
                                       const FeedbackChoices& choices, int volume);

/// No baseline is sought in the volumes before this one.
inline constexpr int firstBaselineVolume = 6;

/// A block of the baseline condition ended BaselineEndShift volumes before `volume`.
[[nodiscard]] bool baselineBlockEnds(const FeedbackSignals& signals, const FeedbackChoices& choices,
                                     int volume);
/// The mean over the window of the block that ended: from BaselineStartShift behind its first
/// volume to BaselineEndShift behind its last one. 0 when the block begins before
/// firstBaselineVolume, and for less than 4 volumes.
[[nodiscard]] SignalPair blockBaseline(const FeedbackSignals& signals,
                                       const FeedbackChoices& choices, int volume);
