// Inner loops of the general linear model, each over a block of consecutive voxels.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

// All loops are vectorised across voxels: the operations on a voxel keep the order written here, so
// the results are bit for bit those of a loop over single voxels.
//
// A "row" holds one value per voxel; rows of a matrix are `stride` values apart. `count` is the
// number of voxels of the block, at most glmBlockVoxels.

/// Voxels in a block: with 8 predictors their state stays in the first-level cache between the
/// update and the t values.
inline constexpr size_t glmBlockVoxels = 256;

/// The update of each voxel by a new volume: e = y - x'b; b += e * gain; RSS += e * e / scale.
struct RecursiveStep {
    std::span<const double> x;    ///< p predictor values of the volume
    std::span<const double> gain; ///< p
    double scale = 1.0;
};

/// Updates p rows of betas and, in row p, the residual sum of squares.
void updateBetasAndResiduals(const RecursiveStep& step, const int16_t* samples, double* values,
                             size_t stride, size_t count);

/// Float copies of the betas, p rows with the stride glmBlockVoxels, and the residual variance
/// RSS / df of each voxel in `variances`.
void copyBetasAndVariances(const double* values, size_t stride, int p, float degreesOfFreedom,
                           size_t count, float* betas, float* variances);

/// One contrast over the columns of the model.
struct ContrastTerms {
    std::span<const float> weights; ///< p
    float variance = 0.0f;          ///< c' iXX c
};

/// t = (c . b) / sqrt(residual variance * contrast variance) in float. 0 where the residual
/// variance is below 1e-05 or not a number (a flat voxel, no degrees of freedom). 0 also for a
/// contrast variance that is not positive: it can be negative only by rounding, and is 0 for a
/// contrast without weights in the model, where t would be 0 / 0.
void computeTValues(const ContrastTerms& contrast, const float* betas, size_t stride,
                    const float* variances, size_t count, float* tValues);

/// One step of the conjunction for each voxel: combines `result` with the next map's values. After
/// all maps it holds the value of smallest magnitude where all have the same sign, else 0; a value
/// that is not a number counts as 0. This is the test of the conjunction null by the minimum
/// statistic (Nichols et al. 2005, NeuroImage 25:653-660).
void conjoinMaps(const float* values, size_t count, float* result);

/// The design of a batch solution, shared by all blocks.
struct BatchDesign {
    int p = 0;
    int n = 0;
    std::vector<float> x;       ///< n x p, row by volume
    std::vector<float> inverse; ///< p x p, of X'X
    int rank = 0;               ///< directions that the inverse has kept
};

/// Working memory of the batch solution, for one block.
struct BatchScratch {
    std::vector<float> samples;     ///< n rows
    std::vector<float> xy;          ///< p rows, X'y
    std::vector<float> betas;       ///< p rows
    std::vector<double> model;      ///< one row
    std::vector<double> sums;       ///< one row, of residuals
    std::vector<double> squareSums; ///< one row, of squared residuals
    /// False when memory runs out, which ends the program.
    [[nodiscard]] bool allocate(int p, int n);
};

/// Least squares of one block from all volumes: X'y and betas in float; residuals from float
/// products summed in double; RSS about the mean residual. `volumes` holds n pointers to the
/// block's samples. Writes p rows of betas and the RSS in row p.
void solveBlock(const BatchDesign& design, std::span<const int16_t* const> volumes, size_t count,
                BatchScratch& scratch, double* values, size_t stride);
