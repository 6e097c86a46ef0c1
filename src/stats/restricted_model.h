// Comparing a model with one in which some of its betas, or sums of them, are 0.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "stats/map_kernels.h"
#include "stats/whole_run_model.h"

/// What a restricted model loses against the whole one, for any voxel.
struct ModelComparison {
    /// df1: restrictions that the design can test. One on columns that are zeros, or depend on
    /// those that stay, has nothing to test and doesn't count.
    int nrOfRestrictions = 0;
    /// Sum of squares of these forms = difference of the residual sums of squares / df1. With
    /// serial correlation correction for each bin of whitened designs.
    SquaredForms forms;
};

/// Compares the design with the one in which C b = 0. `restrictions` is C, row by restriction with
/// p weights each; rows may depend on each other. Without a restriction that can be tested, and for
/// a design with values that are not finite, all forms are 0. False only when svdfit fails, which
/// ends the program.
///
/// Where p - m columns remain of p, the difference is (C b)' S (C b) with C reduced to m unit
/// columns, and S the sums of products of these columns' residuals after a fit by the restricted
/// design, S = Xt'Xt - Xt'Xr (Xr'Xr)^-1 Xr'Xt. For betas of least squares this equals the
/// difference of the explained sums of squares, R^2 T - Q, which would drown in the rounding of
/// float sums at a mean of some thousands.
[[nodiscard]] bool compareWithRestricted(const WholeRunDesign& design,
                                         std::span<const float> restrictions,
                                         ModelComparison& result);
