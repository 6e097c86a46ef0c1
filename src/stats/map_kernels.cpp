// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/map_kernels.h"

#include "base/simd_clones.h"
#include "stats/row_sums.h"

#include <cmath>
#include <limits>

namespace {

constexpr float smallestError = 1e-06f;
constexpr float smallestVariance = smallestError * smallestError;

/// A file may hold values that no fit gives.
[[gnu::always_inline]] inline float finiteOrZero(float value) {
    return std::fabs(value) <= std::numeric_limits<float>::max() ? value : 0.0f;
}

/// sums = the weighted sum of some rows of betas, each voxel with the weights of its bin.
[[gnu::always_inline]] inline void sumRowsOfBins(const float* weights, size_t binStride,
                                                 std::span<const int> columns,
                                                 const FittedBlock& block, float* __restrict sums) {
    std::fill_n(sums, block.count, 0.0f);
    for (size_t j = 0; j < columns.size(); ++j) {
        const float* row = block.betas + size_t(columns[j]) * block.stride;
        if (binStride == 0)
            for (size_t v = 0; v < block.count; ++v)
                sums[v] += weights[j] * row[v];
        else
            for (size_t v = 0; v < block.count; ++v)
                sums[v] += weights[size_t(block.bins[v]) * binStride + j] * row[v];
    }
}

} // namespace

VELO_SIMD_CLONES
void computeResidualVariances(const float* correlations, const float* totals,
                              float degreesOfFreedom, size_t count, float* __restrict variances) {
    if (!(degreesOfFreedom > 0.0f)) {
        std::fill_n(variances, count, 0.0f);
        return;
    }
    for (size_t v = 0; v < count; ++v) {
        const float r = correlations[v];
        const float residual = totals[v] * ((1.0f - r) * (1.0f + r));
        variances[v] = r > 0.0f ? residual / degreesOfFreedom : 0.0f;
    }
}

VELO_SIMD_CLONES
void computeTValuesOfBins(std::span<const float> weights, std::span<const float> contrastVariances,
                          const FittedBlock& block, float* __restrict tValues) {
    alignas(64) float effects[glmBlockVoxels];
    sumRows(weights.data(), 1, int(weights.size()), block.betas, block.stride, block.count,
            effects);
    const float* variances = contrastVariances.data();
    for (size_t v = 0; v < block.count; ++v) {
        const float error = std::sqrt(block.variances[v] * variances[block.bins[v]]);
        const float t = finiteOrZero(effects[v] / error);
        tValues[v] = error >= smallestError ? t : 0.0f;
    }
}

VELO_SIMD_CLONES
void computeFValues(const SquaredForms& forms, const FittedBlock& block,
                    float* __restrict fValues) {
    alignas(64) float sums[glmBlockVoxels];
    const size_t terms = forms.columns.size();
    const size_t binStride = forms.nrOfBins == 1 ? 0 : size_t(forms.nrOfForms) * terms;
    std::fill_n(fValues, block.count, 0.0f);
    for (size_t form = 0; form < size_t(forms.nrOfForms); ++form) {
        sumRowsOfBins(forms.weights.data() + form * terms, binStride, forms.columns, block, sums);
        for (size_t v = 0; v < block.count; ++v)
            fValues[v] += sums[v] * sums[v];
    }
    for (size_t v = 0; v < block.count; ++v) {
        const float F = finiteOrZero(fValues[v] / block.variances[v]);
        fValues[v] = block.variances[v] >= smallestVariance ? F : 0.0f;
    }
}

VELO_SIMD_CLONES
void keepAgreeingSigns(std::span<const float> weights, const FittedBlock& block,
                       float* __restrict values) {
    for (size_t j = 0; j < weights.size(); ++j) {
        if (weights[j] == 0.0f)
            continue;
        const float sign = weights[j] > 0.0f ? 1.0f : -1.0f;
        const float* betas = block.betas + j * block.stride;
        for (size_t v = 0; v < block.count; ++v)
            values[v] = betas[v] * sign > 0.0f ? values[v] : 0.0f;
    }
}
