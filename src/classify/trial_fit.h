// Estimating one trial in many voxels: the one way for finished runs and for runs that go on.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "classify/trial_design.h"
#include "volume/run_volumes.h"

#include <span>

/// What is done with each voxel's window y (n points, from the samples as signed 16-bit numbers,
/// sums in double):
/// - with z normalization, unless percent changes are wanted, and n above 2: y = (y - mean) / sd
///   with the population's sd, 1 where that is below 0.01;
/// - b = (X'X)^-1 X'y;
/// - a beta is b[0]; a percent change 100 b[0] / b[1], but b[0] itself where that is not above 0;
///   a t value b[0] / sqrt((SSy - SSf) / (n - p) (X'X)^-1[0][0]), where SSy and SSf are the sums of
///   squares about the mean of y and of the fit, neither below 0. A denominator below 1e-6, or none
///   since n is not above p, gives 0. Whatever is not finite is 0, and so is the percent change of
///   a constant that is mere rounding, below 1e-9 of the beta.
struct TrialFit {
    TrialDesign design;
    TrialEstimate estimate = TrialEstimate::TValue;
    bool zNormalization = false;

    /// z normalization is wanted and can't be had: fewer than 3 points.
    [[nodiscard]] bool skipsNormalization() const;
};

/// The values of voxels, given by their places in a volume (x fastest, then y, then slices), for
/// one window of volumes. `window` has the design's number of points, `values` one for each voxel;
/// every volume of the window exists and holds every place.
void estimateVoxels(const TrialFit& fit, const RunVolumes& volumes, std::span<const int> window,
                    std::span<const size_t> places, std::span<float> values);

/// The same for consecutive voxels from `firstPlace` on, as many as there are values: whole slices.
/// Voxels whose sample in the first volume is below `intensityLimit` are left as they are.
void estimateConsecutiveVoxels(const TrialFit& fit, const RunVolumes& volumes,
                               std::span<const int> window, size_t firstPlace, int intensityLimit,
                               std::span<float> values);
