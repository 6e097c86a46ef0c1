// How fine the detail of a volume is, as far as it matters for the fit of motion.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "volume/motion_resampling.h"

#include <array>
#include <span>

/// Along x, y and z: whether the steep slopes of a volume are too sharp for its voxels, so that its
/// values between the voxels can't be known. A spline through the voxels then waves beside each
/// edge, by another amount for each fraction of a voxel, and a fit follows these waves.
///
/// The measure is the ratio of fourth to first differences, both squared and weighted by the
/// square of the slope. For a wave of w radians per voxel it is 8 / sqrt(3) sin(w/2)^3 / cos(w/2);
/// too sharp is a ratio above 2, that of waves shorter than 4.2 voxels. Simulated heads with edges
/// of two voxels and texture down to three have 0.7 to 1.3, with edges of one voxel 2.8 to 4; a
/// measured head of 3 mm voxels has 2.9 to 3.7.
///
/// An axis of less than five voxels is never too sharp.
[[nodiscard]] std::array<bool, 3> axesTooSharp(const VolumeGrid& grid,
                                               std::span<const int16_t> volume);
