// What the operator chose for the post-processing of a run.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "volume/motion_method.h"

#include <algorithm>
#include <cmath>

/// Correction of the slices' different times within a volume. Direction and pattern give the order
/// in which the slices were measured; with neither pattern it is sequential. With neither
/// interpolation the correction is linear.
struct SliceScanTimeOptions {
    bool checked = false; ///< the group; without it the choices below are ignored
    bool ascendingSliceOrder = true;
    bool descendingSliceOrder = false;
    bool interleavedSliceOrder = false;  ///< every other slice from the first one measured
    bool interleaved2SliceOrder = false; ///< every other slice from the second one
    bool sincInterpolation = false;
    bool cubicSplineInterpolation = true;
    /// Use the headers' time of each slice (FMRHeader::sliceTimes) instead of direction and
    /// pattern.
    bool measuredTimes = false;
};

/// Motion correction of all volumes.
struct RunMotionOptions {
    bool checked = false;
    MotionMethod method = MotionMethod::Standard;
    int targetVolume = 0; ///< the others are aligned to it; from 0
};

/// Gaussian smoothing of all volumes.
struct SpatialSmoothingOptions {
    bool checked = false;
    bool inSpaceDomain = true; ///< else in the frequency domain
    bool in2D = false;         ///< within each slice; else along all three axes
    bool inMillimetres = true; ///< else the width is in pixels, the same along each axis
    float fwhm = 4.0f;         ///< full width at half maximum
};

/// Filters of the voxels' time courses.
struct TemporalOptions {
    bool checked = false;
    bool linearTrendRemoval = false;
    bool highPass = true;        ///< includes the removal of the linear trend
    float highPassCycles = 2.0f; ///< pairs of sine and cosine, as entered
    bool gaussian = false;
    bool gaussianInSeconds = true; ///< else the width is in data points
    float gaussianWidth = 0.0015f; ///< full width at half maximum

    /// The number of pairs, rounded to the nearest integer, halves up; at most a million. -1 for
    /// NaN and below zero.
    [[nodiscard]] int nrOfHighPassCycles() const {
        const double rounded = std::floor(double(highPassCycles) + 0.5);
        return rounded >= 0.0 ? int(std::min(rounded, 1e6)) : -1;
    }
};

struct PostprocessingOptions {
    SliceScanTimeOptions sliceScanTime;
    RunMotionOptions motion;
    SpatialSmoothingOptions spatial;
    TemporalOptions temporal;
};

/// With an even number of slices scanners begin an interleaved volume with the second slice of the
/// direction.
[[nodiscard]] constexpr bool interleavedBeginsWithSecond(int nrOfSlices) {
    return nrOfSlices % 2 == 0;
}

/// The options with the interleaved pattern that the number of slices allows.
[[nodiscard]] inline SliceScanTimeOptions withAllowedPattern(SliceScanTimeOptions options,
                                                             int nrOfSlices) {
    if (options.interleavedSliceOrder && interleavedBeginsWithSecond(nrOfSlices)) {
        options.interleavedSliceOrder = false;
        options.interleaved2SliceOrder = true;
    }
    return options;
}

/// The dialog's initial choices: no group checked; ascending and interleaved order; cubic spline;
/// high-pass with 2 cycles.
[[nodiscard]] inline PostprocessingOptions defaultPostprocessingOptions(int nrOfSlices) {
    PostprocessingOptions options;
    options.sliceScanTime.interleavedSliceOrder = true;
    options.sliceScanTime = withAllowedPattern(options.sliceScanTime, nrOfSlices);
    return options;
}
