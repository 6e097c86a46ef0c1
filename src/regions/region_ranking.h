// The best voxels of each region.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "regions/regions.h"
#include "stats/incremental_glm.h"

/// Sorts the voxels of each region by how strongly they respond, best first. Nothing happens while
/// no condition is in the model. The list of a region with a ratio of 1 or fewer than 2 voxels is
/// emptied, and so is that of a region whose selected condition (TopVoxelSelectionMode, counted in
/// the design) is not in the model yet.
///
/// base = beta of the constant, or 1 where that is exactly 0. For all predictors: score = (largest
/// magnitude of the condition betas + sum of |beta - their mean|) / base; for one condition: its
/// beta / base. Sorted by indexx in ascending order and reversed.
void rankROIVoxels(Regions& regions, const GLMState& glm, const DesignMatrix& design,
                   const VolumeSize& size);
