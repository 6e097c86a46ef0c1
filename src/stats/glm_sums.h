// Sums over volumes from which a model is solved in double, each over a block of voxels.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

// The sums of a block are p + 1 rows of `count` values: X'y, then y'y. A voxel's y are its samples
// less a reference sample of its own where the model has a constant, which absorbs it; otherwise
// the mean of a voxel, hundreds of times larger than its changes, would cost that many digits.

/// How a block is referred to: where the model has a constant.
struct SumsReference {
    const int16_t* samples = nullptr; ///< of the block; none: samples are taken as they are
    size_t constant = 0;              ///< the beta that takes them back in
};

/// Adds a volume with the predictors x (p) to the sums.
void addVolumeToSums(std::span<const double> x, const int16_t* samples,
                     const SumsReference& reference, size_t count, double* sums);

/// Betas = `inverse` (p x p) times X'y into p rows of values, RSS = y'y - b'X'y, at least 0, into
/// row p. Rows of `values` are `stride` apart.
void solveFromSums(std::span<const double> inverse, size_t p, const SumsReference& reference,
                   const double* sums, size_t count, double* values, size_t stride);
