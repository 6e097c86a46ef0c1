// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/whole_run_kernels.h"

#include "base/simd_clones.h"

#include <algorithm>

namespace {

/// sums += x[0] * row 0, then x[stride] * row 1, ... Several rows at once keep the sum in a
/// register.
template<size_t points>
[[gnu::always_inline]] inline void addWeightedRows(const double* x, size_t stride,
                                                   const double* rows, size_t count,
                                                   double* __restrict sums) {
    for (size_t v = 0; v < count; ++v) {
        double sum = sums[v];
        for (size_t t = 0; t < points; ++t)
            sum += x[t * stride] * rows[t * glmBlockVoxels + v];
        sums[v] = sum;
    }
}

/// residuals -= x[0] * b of column 0, then x[1] * b of column 1, ...
template<size_t terms>
[[gnu::always_inline]] inline void subtractTerms(const double* x, const int* columns,
                                                 const double* betas, size_t count,
                                                 double* __restrict residuals) {
    const double* rows[terms];
    for (size_t j = 0; j < terms; ++j)
        rows[j] = betas + size_t(columns[j]) * glmBlockVoxels;
    for (size_t v = 0; v < count; ++v) {
        double residual = residuals[v];
        for (size_t j = 0; j < terms; ++j)
            residual -= x[j] * rows[j][v];
        residuals[v] = residual;
    }
}

/// out = matrix * values, for a symmetric matrix.
[[gnu::always_inline]] inline void multiplySymmetric(const double* matrix, const double* values,
                                                     size_t p, double* __restrict out) {
    std::fill_n(out, p, 0.0);
    for (size_t j = 0; j < p; ++j) {
        const double value = values[j];
        const double* row = matrix + j * p;
        for (size_t i = 0; i < p; ++i)
            out[i] += row[i] * value;
    }
}

} // namespace

VELO_SIMD_CLONES
void convertSamples(const int16_t* samples, const double* origins, size_t count,
                    double* __restrict row) {
    for (size_t v = 0; v < count; ++v)
        row[v] = double(samples[v]) - origins[v];
}

VELO_SIMD_CLONES
void addMoments(const double* row, size_t count, double* __restrict sums,
                double* __restrict squares) {
    for (size_t v = 0; v < count; ++v) {
        sums[v] += row[v];
        squares[v] += row[v] * row[v];
    }
}

VELO_SIMD_CLONES
void standardiseRow(const double* means, const double* scales, size_t count,
                    double* __restrict row) {
    for (size_t v = 0; v < count; ++v)
        row[v] = (row[v] - means[v]) * scales[v];
}

VELO_SIMD_CLONES
void addProducts(const double* x, std::span<const int> columns, const double* rows, size_t points,
                 size_t count, double* products) {
    const size_t stride = columns.size();
    for (size_t j = 0; j < stride; ++j) {
        double* sums = products + size_t(columns[j]) * glmBlockVoxels;
        size_t t = 0;
        for (; t + wholeRunGroupPoints <= points; t += wholeRunGroupPoints)
            addWeightedRows<wholeRunGroupPoints>(x + t * stride + j, stride,
                                                 rows + t * glmBlockVoxels, count, sums);
        for (; t < points; ++t)
            addWeightedRows<1>(x + t * stride + j, stride, rows + t * glmBlockVoxels, count, sums);
    }
}

VELO_SIMD_CLONES
void computeResiduals(const double* x, std::span<const int> columns, const double* betas,
                      const double* samples, size_t count, double* residuals) {
    std::copy_n(samples, count, residuals);
    size_t j = 0;
    for (; j + 4 <= columns.size(); j += 4)
        subtractTerms<4>(x + j, columns.data() + j, betas, count, residuals);
    for (; j < columns.size(); ++j)
        subtractTerms<1>(x + j, columns.data() + j, betas, count, residuals);
}

VELO_SIMD_CLONES
void whitenRow(const double* row, const double* previous, const double* lagOneValues, size_t count,
               double* out) {
    for (size_t v = 0; v < count; ++v)
        out[v] = row[v] - lagOneValues[v] * previous[v];
}

VELO_SIMD_CLONES
void addLagOneSums(const double* row, const double* previous, size_t count,
                   double* __restrict squares, double* __restrict lagProducts) {
    for (size_t v = 0; v < count; ++v)
        squares[v] += row[v] * row[v];
    if (previous != nullptr)
        for (size_t v = 0; v < count; ++v)
            lagProducts[v] += row[v] * previous[v];
}

VELO_SIMD_CLONES
double solveNormalEquations(std::span<const double> inverse, std::span<const double> centred,
                            const double* xy, size_t p, double* betas, double* work) {
    multiplySymmetric(inverse.data(), xy, p, betas);
    multiplySymmetric(centred.data(), betas, p, work);
    double squares = 0.0;
    for (size_t j = 0; j < p; ++j)
        squares += betas[j] * work[j];
    return squares;
}
