// Products of matrices and vectors: plain loops in float, and the BLAS library.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <span>

namespace numerics {

/// Called once when the program starts: the BLAS library then works on one thread, which is fastest
/// for the small matrices here and keeps results the same from run to run.
void initialiseNumerics();

// All matrices are row-major without gaps. The plain loops sum in float, from the first term to the
// last, starting at 0.

/// Sum of a[i] * b[i] over the length of the shorter one.
[[nodiscard]] float dot(std::span<const float> a, std::span<const float> b);
/// out (rows) = a (rows x columns) * x (columns).
void matVec(std::span<const float> a, std::span<const float> x, std::span<float> out, int rows,
            int columns);
/// out (rows x columns) = a (rows x inner) * b (inner x columns).
void matMul(std::span<const float> a, std::span<const float> b, std::span<float> out, int rows,
            int inner, int columns);

/// C (m x n) = op(A) op(B) with inner size k, by BLAS, alpha 1 and beta 0. op transposes where its
/// flag is set: the leading dimension of A is m if transposed, else k; that of B is k, else n.
/// Sizes below 1 leave C as it is.
void t_intel_matrix_matrix_mult_f(const float* A, const float* B, float* C, int m, int n, int k,
                                  bool transposeA, bool transposeB);
void t_intel_matrix_matrix_mult_d(const double* A, const double* B, double* C, int m, int n, int k,
                                  bool transposeA, bool transposeB);
/// y = op(A) x with A of m rows and n columns, by BLAS, alpha 1 and beta 0.
void t_intel_matrix_vector_mult_f(const float* A, const float* x, float* y, int m, int n,
                                  bool transposeA);
void t_intel_matrix_vector_mult_d(const double* A, const double* x, double* y, int m, int n,
                                  bool transposeA);

} // namespace numerics
