// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/numerics/matrix_products.h"

#include <algorithm>
#include <cblas.h>

namespace numerics {

namespace {

CBLAS_TRANSPOSE transposition(bool transpose) {
    return transpose ? CblasTrans : CblasNoTrans;
}

} // namespace

void initialiseNumerics() {
    openblas_set_num_threads(1);
}

float dot(std::span<const float> a, std::span<const float> b) {
    const size_t count = std::min(a.size(), b.size());
    float sum = 0.0f;
    for (size_t i = 0; i < count; ++i)
        sum += a[i] * b[i];
    return sum;
}

void matVec(std::span<const float> a, std::span<const float> x, std::span<float> out, int rows,
            int columns) {
    for (size_t i = 0; i < size_t(rows); ++i)
        out[i] = dot(a.subspan(i * size_t(columns), size_t(columns)), x.first(size_t(columns)));
}

void matMul(std::span<const float> a, std::span<const float> b, std::span<float> out, int rows,
            int inner, int columns) {
    for (size_t i = 0; i < size_t(rows); ++i) {
        for (size_t j = 0; j < size_t(columns); ++j) {
            float sum = 0.0f;
            for (size_t l = 0; l < size_t(inner); ++l)
                sum += a[i * size_t(inner) + l] * b[l * size_t(columns) + j];
            out[i * size_t(columns) + j] = sum;
        }
    }
}

void t_intel_matrix_matrix_mult_f(const float* A, const float* B, float* C, int m, int n, int k,
                                  bool transposeA, bool transposeB) {
    if (m < 1 || n < 1 || k < 1)
        return;
    cblas_sgemm(CblasRowMajor, transposition(transposeA), transposition(transposeB), m, n, k, 1.0f,
                A, transposeA ? m : k, B, transposeB ? k : n, 0.0f, C, n);
}

void t_intel_matrix_matrix_mult_d(const double* A, const double* B, double* C, int m, int n, int k,
                                  bool transposeA, bool transposeB) {
    if (m < 1 || n < 1 || k < 1)
        return;
    cblas_dgemm(CblasRowMajor, transposition(transposeA), transposition(transposeB), m, n, k, 1.0,
                A, transposeA ? m : k, B, transposeB ? k : n, 0.0, C, n);
}

void t_intel_matrix_vector_mult_f(const float* A, const float* x, float* y, int m, int n,
                                  bool transposeA) {
    if (m < 1 || n < 1)
        return;
    cblas_sgemv(CblasRowMajor, transposition(transposeA), m, n, 1.0f, A, n, x, 1, 0.0f, y, 1);
}

void t_intel_matrix_vector_mult_d(const double* A, const double* x, double* y, int m, int n,
                                  bool transposeA) {
    if (m < 1 || n < 1)
        return;
    cblas_dgemv(CblasRowMajor, transposition(transposeA), m, n, 1.0, A, n, x, 1, 0.0, y, 1);
}

} // namespace numerics
