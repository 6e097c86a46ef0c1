// Inner loops of the maps of complete data, each over a block of consecutive voxels.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "stats/glm_kernels.h"

/// A block of voxels of a fitted model, at most glmBlockVoxels.
struct FittedBlock {
    const float* betas = nullptr;     ///< p rows
    size_t stride = 0;                ///< between rows
    const float* variances = nullptr; ///< residual variance; 0 where the maps are 0
    const int* bins = nullptr;        ///< of each voxel, below nrOfBins of what is computed
    size_t count = 0;
};

/// Residual variance (T - T R^2) / df of each voxel, and 0 where R <= 0 or df is 0. 1 - R^2 is
/// taken as (1 - R) (1 + R), which keeps its digits where R is close to 1.
void computeResidualVariances(const float* correlations, const float* totals,
                              float degreesOfFreedom, size_t count, float* variances);

/// t = (c . b) / s with s = sqrt(residual variance * c' iXX c), and 0 where s is below 1e-06.
/// `contrastVariances` has c' iXX c for each bin.
void computeTValuesOfBins(std::span<const float> weights, std::span<const float> contrastVariances,
                          const FittedBlock& block, float* tValues);

/// An F value as a sum of squares: that of `nrOfForms` weighted sums of the betas, divided by the
/// residual variance.
struct SquaredForms {
    int nrOfForms = 0;
    int nrOfBins = 1;
    std::vector<int> columns;   ///< whose betas have weights
    std::vector<float> weights; ///< bin by bin, form by form, one for each of the columns
};

/// F of each voxel; 0 where the residual variance is below 1e-12.
void computeFValues(const SquaredForms& forms, const FittedBlock& block, float* fValues);

/// Sets a value to 0 where a beta doesn't have the sign of its weight. Weights of 0 allow all.
void keepAgreeingSigns(std::span<const float> weights, const FittedBlock& block, float* values);
