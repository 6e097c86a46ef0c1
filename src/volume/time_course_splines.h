// Cubic splines through the time courses of a block of voxels.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "volume/time_courses.h"

/// Natural cubic splines through timeCourseBlock time courses. Samples are one volume apart, so the
/// elimination is the same for all voxels and is done once per run.
class TimeCourseSplines {
public:
    explicit TimeCourseSplines(size_t nrOfVolumes);

    /// Sets each row v of `filtered`, from 1 on, to the values at v - delay; 0 <= delay < 1. Row 0
    /// is left unchanged.
    void shift(double delay, const double* samples, double* filtered);

private:
    void findCurvatures(const double* samples, double* work);

    size_t nrOfVolumes_;
    std::vector<double> diagonal_;  ///< of the tridiagonal system, after elimination
    std::vector<float> curvatures_; ///< second derivatives, one row for each volume
};
