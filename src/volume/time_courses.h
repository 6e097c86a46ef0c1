// Filtering the time courses of all voxels of a run.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/progress.h"
#include "volume/fmr_project.h"

#include <functional>

/// Voxels that are filtered side by side: long enough for straight inner loops, short enough for
/// their whole time courses to stay in the cache.
inline constexpr size_t timeCourseBlock = 128;

/// The largest sample that is written: that of signed samples, as statistics read them, or that of
/// unsigned ones, as scanners write them. All are read as unsigned.
enum class SampleRange : int {
    Signed = 32767,
    Unsigned = 65535,
};

/// Filters the time courses of a block of voxels of one slice. Both arrays have one row of
/// timeCourseBlock values for each volume; unused columns are 0.
using TimeCourseFilter =
    std::function<void(int slice, std::span<const double> samples, std::span<double> filtered)>;

/// How many of the first `nrOfVolumes` volumes are allocated, up to the first that is not.
[[nodiscard]] int nrOfCompleteVolumes(const FMRProject& project, int nrOfVolumes);

/// Applies a filter to all voxels over the first volumes of the run. Results are clamped to 0 to
/// the largest sample and rounded half up; a constant time course is left unchanged. False after a
/// message when memory runs out, with the samples unchanged, and without one when cancelled, with
/// part of the voxels filtered.
[[nodiscard]] bool filterTimeCourses(FMRProject& project, int nrOfVolumes, SampleRange range,
                                     const StepProgress& progress, const TimeCourseFilter& filter);
