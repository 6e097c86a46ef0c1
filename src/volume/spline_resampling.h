// Resampling a volume after a rigid motion, by its B-spline.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "volume/spline_volume.h"

/// Applies the transformation to a whole volume, as resampleVolume() does, but with the values of
/// the spline, rounded to the nearest integer, halves up, and limited to 0 to 65535. Up to half a
/// voxel beyond the outermost voxels their value counts; further out it is 0. `destination` holds
/// source.grid().samples() samples.
void resampleVolume(const SplineVolume& source, std::span<int16_t> destination,
                    const RigidTransformation& transformation,
                    WorkerPool& workers = callersThread());
