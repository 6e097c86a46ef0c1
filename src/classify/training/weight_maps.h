// The weights of a trained machine as maps over the slices of a run.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "classify/svm_weights.h"
#include "run/document/qt_cortivo_doc.h"
#include "stats/thresholds.h"

/// "SVM Weights", or for each class "SVM Pref Weights, Class %1" with its label.
[[nodiscard]] QStringList weightMapNames(const std::vector<SVMWeights>& weights);

/// Replaces contrasts and maps of the document by a row of weights, or with -1 by all rows. Each
/// voxel takes the weight of its feature, others 0. Both signs are shown; the first map is red, the
/// second green, ... The voxels lie in the run, one for each weight. False, without maps, when
/// memory runs out.
[[nodiscard]] bool putWeightMaps(QtCortivoDoc& document, const std::vector<SVMWeights>& weights,
                                 const VoxelList& voxels, int row);

/// The lower one is 0.01, or a tenth of the largest magnitude if no weight reaches that; the upper
/// one is the largest magnitude, if that is more; single voxels are shown.
[[nodiscard]] OverlayThresholds weightThresholds(const std::vector<SVMWeights>& weights);
inline constexpr float smallestWeightThreshold = 1e-8f;
/// The lower threshold as entered, at least the smallest one. Weights have no scale of their own:
/// an upper one that is not above it becomes its double.
void changeWeightThreshold(OverlayThresholds& thresholds, float value);
/// The upper threshold as entered; if not above the lower one, the double of that.
void changeStrongestWeight(OverlayThresholds& thresholds, float value);
