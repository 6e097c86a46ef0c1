// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/glm_sums.h"

#include "base/simd_clones.h"
#include "stats/design_matrix.h"
#include "stats/glm_kernels.h"

#include <algorithm>
#include <cstring>

namespace {

/// As many doubles as a register of AVX2 holds; on other machines the compiler takes two.
using Lanes [[gnu::vector_size(32)]] = double;
constexpr size_t lanes = sizeof(Lanes) / sizeof(double);
/// Voxels that are solved together: two registers for each beta.
constexpr size_t tileVoxels = 2 * lanes;

/// The sums of a few voxels, row by row, so that they stay in the first-level cache.
struct Tile {
    Lanes rows[DesignMatrix::maximumPredictors + 1][2] = {};
};

/// A copy of a known size is two registers, any other a call or a slow loop.
[[gnu::always_inline]] inline void copyRow(const void* from, size_t count, void* to) {
    if (count == tileVoxels)
        std::memcpy(to, from, tileVoxels * sizeof(double));
    else
        std::memcpy(to, from, count * sizeof(double));
}

/// `rows` betas of a tile, from `first` on; takes what they explain off the last row of the tile.
template<size_t rows>
[[gnu::always_inline]] inline void solveRows(const double* inverse, size_t p, size_t first,
                                             Tile& tile, size_t count, double* values,
                                             size_t stride) {
    Lanes betas[rows][2] = {};
    for (size_t k = 0; k < p; ++k)
        for (size_t i = 0; i < rows; ++i) {
            const double factor = inverse[(first + i) * p + k];
            betas[i][0] += factor * tile.rows[k][0];
            betas[i][1] += factor * tile.rows[k][1];
        }
    for (size_t i = 0; i < rows; ++i) {
        tile.rows[p][0] -= betas[i][0] * tile.rows[first + i][0];
        tile.rows[p][1] -= betas[i][1] * tile.rows[first + i][1];
        copyRow(betas[i], count, values + (first + i) * stride);
    }
}

} // namespace

VELO_SIMD_CLONES
void addVolumeToSums(std::span<const double> x, const int16_t* samples,
                     const SumsReference& reference, size_t count, double* __restrict sums) {
    alignas(64) double y[glmBlockVoxels];
    for (size_t v = 0; v < count; ++v)
        y[v] = double(samples[v]);
    if (reference.samples)
        for (size_t v = 0; v < count; ++v)
            y[v] -= double(reference.samples[v]);
    for (size_t j = 0; j < x.size(); ++j)
        for (size_t v = 0; v < count; ++v)
            sums[j * count + v] += x[j] * y[v];
    double* squares = sums + x.size() * count;
    for (size_t v = 0; v < count; ++v)
        squares[v] += y[v] * y[v];
}

VELO_SIMD_CLONES
void solveFromSums(std::span<const double> inverse, size_t p, const SumsReference& reference,
                   const double* sums, size_t count, double* values, size_t stride) {
    Tile tile;
    for (size_t first = 0; first < count; first += tileVoxels) {
        const size_t part = std::min(tileVoxels, count - first);
        for (size_t k = 0; k <= p; ++k)
            copyRow(sums + k * count + first, part, tile.rows[k]);
        double* betas = values + first;
        size_t i = 0;
        for (; i + 4 <= p; i += 4)
            solveRows<4>(inverse.data(), p, i, tile, part, betas, stride);
        for (; i < p; ++i)
            solveRows<1>(inverse.data(), p, i, tile, part, betas, stride);
        copyRow(tile.rows[p], part, betas + p * stride);
    }
    double* squares = values + p * stride;
    for (size_t v = 0; v < count; ++v)
        squares[v] = std::max(0.0, squares[v]);
    double* constant = values + reference.constant * stride;
    if (reference.samples)
        for (size_t v = 0; v < count; ++v)
            constant[v] += double(reference.samples[v]);
}
