// Scores of voxels for feature elimination: from single voxels, smoothed, and the best of them.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "classify/pattern_set.h"
#include "regions/region_of_interest.h"

#include <span>
#include <stop_token>
#include <vector>

/// One score for each feature: the larger of mean / deviation (of the population) of the two
/// classes. Where a deviation is 0, or with `meansOnly`, the larger mean.
[[nodiscard]] std::vector<double> univariateScores(const PatternSet& training, bool meansOnly);

/// Each score becomes the weighted mean of the scores of all listed voxels within 3 standard
/// deviations of its own: weight exp(-d^2 / (2 s^2)) at a distance of d voxels, with s = fwhm /
/// 2.3548. Voxels that are not listed take no part, so the edge of a region is not drawn towards 0.
/// `places` has one voxel for each score. A width of 0 or less changes nothing. Once `stop` asks
/// for it, the scores that are left stay as they are.
[[nodiscard]] std::vector<double> smoothedScores(std::span<const double> scores,
                                                 const VoxelList& places, double fwhm,
                                                 const std::stop_token& stop = {});

/// Positions of the `count` highest scores, ascending; of equal ones the later.
[[nodiscard]] std::vector<int> highestScores(const std::vector<double>& scores, int count);
