// Cubic splines through the time courses of a block of voxels.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "volume/time_courses.h"

/// Natural cubic splines through all samples of timeCourseBlock time courses. Samples stand one
/// volume apart, so the elimination is the same for all voxels and is done once for a run. The
/// values are bit for bit those of numerics::splineSecondDerivatives() and splineValue(), voxel by
/// voxel.
class TimeCourseSplines {
public:
    explicit TimeCourseSplines(size_t nrOfVolumes);

    /// Rows of volumes from 1 on become the values at v - delay; `delay` is from 0 to below 1. Row
    /// 0 of `filtered` stays.
    void shift(double delay, const double* samples, double* filtered);

private:
    void findCurvatures(const double* samples, double* work);

    size_t nrOfVolumes_;
    std::vector<double> diagonal_;  ///< of the tridiagonal system, after elimination
    std::vector<float> curvatures_; ///< second derivatives, one row for each volume
};
