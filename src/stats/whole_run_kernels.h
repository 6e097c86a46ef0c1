// Inner loops of the fit of complete data, each over a block of voxels.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "stats/glm_kernels.h"

// All are vectorised across voxels and compute in double. A row holds one value for each voxel of
// the block; rows of a buffer are glmBlockVoxels values apart, and `count` of each are used.

/// Points that are summed at once; more don't stay in the registers.
inline constexpr size_t wholeRunGroupPoints = 8;

/// row = samples - origins.
void convertSamples(const int16_t* samples, const double* origins, size_t count, double* row);

/// Adds a row to the sums, and its squares to the squares.
void addMoments(const double* row, size_t count, double* sums, double* squares);

/// row = (row - means) * scales.
void standardiseRow(const double* means, const double* scales, size_t count, double* row);

/// X'y of some points: adds x(t, j) * rows[t] to the row columns[j] of `products`, points in order.
/// `x` holds columns.size() values for each point.
void addProducts(const double* x, std::span<const int> columns, const double* rows, size_t points,
                 size_t count, double* products);

/// residuals = samples - x b for one point, where b of x[j] is the row columns[j] of `betas`.
void computeResiduals(const double* x, std::span<const int> columns, const double* betas,
                      const double* samples, size_t count, double* residuals);

/// out = row - lagOneValues * previous; `out` may be `row`.
void whitenRow(const double* row, const double* previous, const double* lagOneValues, size_t count,
               double* out);

/// squares += row * row; lagProducts += row * previous, if there is a previous row.
void addLagOneSums(const double* row, const double* previous, size_t count, double* squares,
                   double* lagProducts);

/// One voxel: betas = inverse * xy, and as result the sum of squares of the fitted values about
/// their mean, betas' centred * betas. The matrices are p x p and symmetric; `work` holds p values.
[[nodiscard]] double solveNormalEquations(std::span<const double> inverse,
                                          std::span<const double> centred, const double* xy,
                                          size_t p, double* betas, double* work);
