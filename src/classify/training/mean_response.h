// The mean response to the trials of a run, as a predictor.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/progress.h"
#include "classify/trial_intervals.h"
#include "volume/run_volumes.h"

#include <optional>

/// Mean of the voxels at these places, or, without places, of all whose sample in the first volume
/// is not below the limit; one value for each volume, sums exact. 0 where there are no voxels.
/// Nothing when it was cancelled.
[[nodiscard]] std::optional<std::vector<double>> meanCurve(const RunVolumes& volumes,
                                                           const std::vector<size_t>& places,
                                                           int intensityLimit,
                                                           ProgressReporter& progress);

/// Mean of the windows of the trials of this duration: minus its first point, scaled to a largest
/// magnitude of 1. Empty when it is flat, with differences below 1e-6 of the signal.
[[nodiscard]] std::vector<double> measuredResponse(const std::vector<double>& curve,
                                                   const std::vector<Trial>& trials, int duration,
                                                   const TrialOptions& options);
