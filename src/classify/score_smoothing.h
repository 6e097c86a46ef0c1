// Smoothing of scores over the places of their voxels.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "regions/region_of_interest.h"

#include <span>
#include <stop_token>
#include <vector>

/// Each score becomes the weighted mean of the scores of all listed voxels within 3 standard
/// deviations of its own: weight exp(-d^2 / (2 s^2)) at a distance of d voxels, with s = fwhm /
/// 2.3548. Voxels that are not listed take no part, so the edge of a region is not drawn towards 0.
/// `places` has one voxel for each score. A width of 0 or less changes nothing. Once `stop` asks
/// for it, the scores that are left stay as they are.
[[nodiscard]] std::vector<double> smoothedScores(std::span<const double> scores,
                                                 const VoxelList& places, double fwhm,
                                                 const std::stop_token& stop = {});
