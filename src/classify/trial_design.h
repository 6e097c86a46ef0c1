// The design of one trial's window.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "classify/trial_options.h"

#include <span>
#include <vector>

/// Columns of a design: response, constant, linear trend. The fit has room for so many per voxel.
inline constexpr int maximumPredictors = 3;

/// Columns: the response, a constant 1, and with a trend i / (n - 1). What a fit needs of it is
/// computed once for all voxels.
struct TrialDesign {
    int nrOfPoints = 0;     ///< n
    int nrOfPredictors = 0; ///< p: 2, or 3 with a trend; at most maximumPredictors
    std::vector<double> X;  ///< n x p, row by row
    /// (X'X)^-1, p x p. Where X lacks directions, the generalised inverse that
    /// numerics::invertNormalMatrix gives.
    std::vector<double> inverse;
    std::vector<double> solution; ///< (X'X)^-1 X', p x n: times y it gives the betas
};

/// End minus start, at most a thousand million in magnitude: a damaged protocol can state any
/// numbers.
[[nodiscard]] int trialDuration(int start, int end);

/// Volumes after the onset of a trial of this length: `postOnset`, and with the option the trial's
/// duration too.
[[nodiscard]] int volumesAfterOnset(const TrialOptions& options, int duration);
/// Points of a window: pre-onset, the onset, and the volumes after it.
[[nodiscard]] int pointsOfWindow(const TrialOptions& options, int duration);

/// A box of 1 from point clamp(pre + 1) to clamp(duration + 1 + pre), counted from 1 and clamped to
/// 1 to n, convolved over n points with the two-gamma response at this TR (milliseconds);
/// `duration` is the end minus the start of the trial's interval. An empty design when n is below 1
/// or memory runs out.
[[nodiscard]] TrialDesign trialDesign(const TrialOptions& options, int duration, float TR);
/// The same with a measured response (n values) in place of the convolved box.
[[nodiscard]] TrialDesign measuredResponseDesign(std::span<const double> response,
                                                 const TrialOptions& options);
/// A predictor that is 1 at the last of n points only, without a response.
[[nodiscard]] TrialDesign lastPointDesign(int nrOfPoints, const TrialOptions& options);

/// Indices, from 0, of the volumes in a window of `count` points from `first` on. A point behind
/// the last measured volume repeats that one; a point before the run takes volume 0.
[[nodiscard]] std::vector<int> windowVolumes(int first, int count, int nrOfMeasuredVolumes);
