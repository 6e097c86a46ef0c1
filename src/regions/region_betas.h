// The model fitted to the mean signal of regions.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "regions/regions.h"
#include "stats/design_matrix.h"

/// Solves the model for each region's curve from the volumes 0 to its CurrentTimePoint, with the
/// condition columns whose onset has passed (all, if there are no onsets) and all confounds, as
/// solveBatch() does: b = inverse(X'X) X'y. `predictorsInModel` and `modelStarted` say how far the
/// run's own model has come: before it has started, or with fewer than 2 columns, all betas are 0
/// and the constant's is 1. Sets ROIBetas, BetaCovariance, residualVariance and predictorsInFit of
/// each region. X'X and its inverse are computed once for all regions of one length.
void computeROIBetas(Regions& regions, const DesignMatrix& design, bool modelStarted);
