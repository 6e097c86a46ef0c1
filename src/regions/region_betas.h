// The model fitted to the mean signal of regions.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "regions/regions.h"
#include "stats/design_matrix.h"

/// Solves the model for each region's curve from the volumes 0 to its CurrentTimePoint, with the
/// condition columns whose onset has passed (all, if no onsets are known) and all confounds, as
/// solveBatch() does: b = inverse(X'X) X'y in float, the residual sum of squares about the mean
/// residual in double; where the inverse in float would drop directions, in double. Sets ROIBetas,
/// with conditions in percent of the constant if that is above 0.01 in magnitude, BetaCovariance,
/// residualVariance (0 without degrees of freedom) and predictorsInFit. BetaCovariance and
/// residualVariance are not scaled.
///
/// `modelStarted` says that the run's own model has been solved. Before that, and for a region
/// without a volume or with fewer than 2 columns in the model, all betas are 0 and the constant's
/// is 1, and nothing counts as fitted. Nothing changes when the design has no columns, as after the
/// end of a run. X'X and its inverse are computed once for successive regions of one length.
void computeROIBetas(Regions& regions, const DesignMatrix& design, bool modelStarted);

/// The same for one region, whose run has a design of its own.
void computeROIBetas(RegionOfInterest& region, const DesignMatrix& design);
