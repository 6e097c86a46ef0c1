// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/glm_sums.h"

#include "base/simd_clones.h"
#include "stats/glm_kernels.h"

#include <algorithm>

namespace {

/// Voxels whose sums and betas stay in the first-level cache together while they are multiplied.
constexpr size_t solvedTogether = 64;

/// Rows 0 to rows - 1 of `betas` = the same rows of the inverse times the sums.
template<size_t rows>
[[gnu::always_inline]] inline void multiplyRows(const double* inverse, size_t p, const double* sums,
                                                size_t sumsStride, size_t count, double* betas,
                                                size_t stride) {
    alignas(64) double results[rows][solvedTogether] = {};
    for (size_t k = 0; k < p; ++k) {
        const double* __restrict row = sums + k * sumsStride;
        for (size_t v = 0; v < count; ++v)
            for (size_t i = 0; i < rows; ++i)
                results[i][v] += inverse[i * p + k] * row[v];
    }
    for (size_t i = 0; i < rows; ++i)
        std::copy_n(results[i], count, betas + i * stride);
}

[[gnu::always_inline]] inline void residualSquares(size_t p, const double* sums, size_t sumsStride,
                                                   size_t count, double* values, size_t stride) {
    double* __restrict squares = values + p * stride;
    std::copy_n(sums + p * sumsStride, count, squares);
    for (size_t j = 0; j < p; ++j)
        for (size_t v = 0; v < count; ++v)
            squares[v] -= values[j * stride + v] * sums[j * sumsStride + v];
    for (size_t v = 0; v < count; ++v)
        squares[v] = std::max(0.0, squares[v]);
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
    for (size_t first = 0; first < count; first += solvedTogether) {
        const size_t part = std::min(solvedTogether, count - first);
        double* betas = values + first;
        size_t i = 0;
        for (; i + 4 <= p; i += 4)
            multiplyRows<4>(inverse.data() + i * p, p, sums + first, count, part,
                            betas + i * stride, stride);
        for (; i < p; ++i)
            multiplyRows<1>(inverse.data() + i * p, p, sums + first, count, part,
                            betas + i * stride, stride);
        residualSquares(p, sums + first, count, part, betas, stride);
    }
    double* constant = values + reference.constant * stride;
    if (reference.samples)
        for (size_t v = 0; v < count; ++v)
            constant[v] += double(reference.samples[v]);
}
