// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/glm_kernels.h"

#include "base/simd_clones.h"
#include "stats/numerics/failures.h"
#include "stats/row_sums.h"

#include <cmath>

namespace {

constexpr float flatVariance = 1e-05f;

/// residuals -= x[0] * row 0, then x[1] * row 1, ... Several rows at once keep the residual in a
/// register.
template<int rows>
[[gnu::always_inline]] inline void subtractRows(const double* x, const double* values,
                                                size_t stride, size_t count,
                                                double* __restrict residuals) {
    for (size_t v = 0; v < count; ++v) {
        double residual = residuals[v];
        for (int j = 0; j < rows; ++j)
            residual -= x[j] * values[size_t(j) * stride + v];
        residuals[v] = residual;
    }
}

/// sums += weight[0] * row 0, ..., with products in float and sums in double.
template<int rows>
[[gnu::always_inline]] inline void addRowsInDouble(const float* weights, const float* values,
                                                   size_t stride, size_t count,
                                                   double* __restrict sums) {
    for (size_t v = 0; v < count; ++v) {
        double sum = sums[v];
        for (int j = 0; j < rows; ++j)
            sum += double(weights[j] * values[size_t(j) * stride + v]);
        sums[v] = sum;
    }
}

/// One step over the contrasts of a voxel: of two values with the same sign the one nearer to 0,
/// otherwise 0. A result of 0 stays 0 in all further steps.
[[gnu::always_inline]] inline float conjunctionStep(float result, float value) {
    if (result > 0.0f && value > 0.0f)
        return value < result ? value : result;
    if (result < 0.0f && value < 0.0f)
        return value > result ? value : result;
    return 0.0f;
}

/// The fitted value of one volume.
[[gnu::always_inline]] inline void computeModel(const float* x, int p, const float* betas,
                                                size_t count, double* model) {
    std::fill_n(model, count, 0.0);
    int j = 0;
    for (; j + 8 <= p; j += 8)
        addRowsInDouble<8>(x + j, betas + size_t(j) * glmBlockVoxels, glmBlockVoxels, count, model);
    for (; j + 4 <= p; j += 4)
        addRowsInDouble<4>(x + j, betas + size_t(j) * glmBlockVoxels, glmBlockVoxels, count, model);
    for (; j < p; ++j)
        addRowsInDouble<1>(x + j, betas + size_t(j) * glmBlockVoxels, glmBlockVoxels, count, model);
}

} // namespace

VELO_SIMD_CLONES
void updateBetasAndResiduals(const RecursiveStep& step, const int16_t* samples, double* values,
                             size_t stride, size_t count) {
    alignas(64) double residuals[glmBlockVoxels];
    for (size_t v = 0; v < count; ++v)
        residuals[v] = double(samples[v]);
    const size_t p = step.x.size();
    size_t j = 0;
    for (; j + 4 <= p; j += 4)
        subtractRows<4>(step.x.data() + j, values + j * stride, stride, count, residuals);
    for (; j < p; ++j)
        subtractRows<1>(step.x.data() + j, values + j * stride, stride, count, residuals);
    for (j = 0; j < p; ++j) {
        const double gain = step.gain[j];
        double* betas = values + j * stride;
        for (size_t v = 0; v < count; ++v)
            betas[v] += residuals[v] * gain;
    }
    double* squares = values + p * stride;
    for (size_t v = 0; v < count; ++v)
        squares[v] += residuals[v] * residuals[v] / step.scale;
}

VELO_SIMD_CLONES
void copyBetasAndVariances(const double* values, size_t stride, int p, float degreesOfFreedom,
                           size_t count, float* __restrict betas, float* __restrict variances) {
    for (int j = 0; j < p; ++j) {
        const double* row = values + size_t(j) * stride;
        float* copy = betas + size_t(j) * glmBlockVoxels;
        for (size_t v = 0; v < count; ++v)
            copy[v] = float(row[v]);
    }
    const double* squares = values + size_t(p) * stride;
    for (size_t v = 0; v < count; ++v)
        variances[v] = float(squares[v]) / degreesOfFreedom;
}

VELO_SIMD_CLONES
void computeTValues(const ContrastTerms& contrast, const float* betas, size_t stride,
                    const float* variances, size_t count, float* __restrict tValues) {
    const float variance = contrast.variance;
    if (!(variance > 0.0f)) {
        std::fill_n(tValues, count, 0.0f);
        return;
    }
    alignas(64) float effects[glmBlockVoxels];
    sumRows(contrast.weights.data(), 1, int(contrast.weights.size()), betas, stride, count,
            effects);
    for (size_t v = 0; v < count; ++v) {
        const float t = effects[v] / std::sqrt(variances[v] * variance);
        tValues[v] = variances[v] >= flatVariance ? t : 0.0f;
    }
}

VELO_SIMD_CLONES
void conjoinMaps(const float* __restrict values, size_t count, float* __restrict result) {
    for (size_t v = 0; v < count; ++v)
        result[v] = conjunctionStep(result[v], values[v]);
}

bool BatchScratch::allocate(int p, int n) {
    return numerics::allocateMatrix(samples, size_t(n), glmBlockVoxels) &&
           numerics::allocateMatrix(xy, size_t(p), glmBlockVoxels) &&
           numerics::allocateMatrix(betas, size_t(p), glmBlockVoxels) &&
           numerics::allocateVector(model, glmBlockVoxels) &&
           numerics::allocateVector(sums, glmBlockVoxels) &&
           numerics::allocateVector(squareSums, glmBlockVoxels);
}

VELO_SIMD_CLONES
void solveBlock(const BatchDesign& design, std::span<const int16_t* const> volumes, size_t count,
                BatchScratch& scratch, double* values, size_t stride) {
    const int p = design.p;
    const int n = design.n;
    for (int t = 0; t < n; ++t) {
        const int16_t* source = volumes[size_t(t)];
        float* __restrict samples = scratch.samples.data() + size_t(t) * glmBlockVoxels;
        for (size_t v = 0; v < count; ++v)
            samples[v] = float(source[v]);
    }
    for (int j = 0; j < p; ++j)
        sumRows(design.x.data() + j, size_t(p), n, scratch.samples.data(), glmBlockVoxels, count,
                scratch.xy.data() + size_t(j) * glmBlockVoxels);
    for (int i = 0; i < p; ++i)
        sumRows(design.inverse.data() + size_t(i) * size_t(p), 1, p, scratch.xy.data(),
                glmBlockVoxels, count, scratch.betas.data() + size_t(i) * glmBlockVoxels);

    double* __restrict sums = scratch.sums.data();
    double* __restrict squareSums = scratch.squareSums.data();
    double* __restrict model = scratch.model.data();
    std::fill_n(sums, count, 0.0);
    std::fill_n(squareSums, count, 0.0);
    for (int t = 0; t < n; ++t) {
        computeModel(design.x.data() + size_t(t) * size_t(p), p, scratch.betas.data(), count,
                     model);
        const float* samples = scratch.samples.data() + size_t(t) * glmBlockVoxels;
        for (size_t v = 0; v < count; ++v) {
            const double residual = double(samples[v]) - model[v];
            sums[v] += residual;
            squareSums[v] += residual * residual;
        }
    }
    for (int j = 0; j < p; ++j) {
        const float* betas = scratch.betas.data() + size_t(j) * glmBlockVoxels;
        for (size_t v = 0; v < count; ++v)
            values[size_t(j) * stride + v] = double(betas[v]);
    }
    for (size_t v = 0; v < count; ++v)
        values[size_t(p) * stride + v] = squareSums[v] - sums[v] * sums[v] / n;
}
