// Fourier transforms and matrix products of the program's own libraries.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/numerics/matrix_products.h"

#include <fftw3.h>

#include "plugin/sdk/velo_cortivo_plugin.h"

void* t_fftwf_malloc(unsigned long size) {
    return fftwf_malloc(size);
}

void t_fftwf_free(void* memory) {
    fftwf_free(memory);
}

fftwf_plan t_fftwf_plan_dft_r2c_3d(int n0, int n1, int n2, float* in, fftwf_complex* out,
                                   unsigned flags) {
    return fftwf_plan_dft_r2c_3d(n0, n1, n2, in, out, flags);
}

fftwf_plan t_fftwf_plan_dft_c2r_3d(int n0, int n1, int n2, fftwf_complex* in, float* out,
                                   unsigned flags) {
    return fftwf_plan_dft_c2r_3d(n0, n1, n2, in, out, flags);
}

void t_fftwf_execute(const fftwf_plan plan) {
    fftwf_execute(plan);
}

void t_fftwf_destroy_plan(fftwf_plan plan) {
    fftwf_destroy_plan(plan);
}

void t_intel_matrix_matrix_mult_f(const float* A, const float* B, float* C, int m, int n, int k,
                                  bool transposeA, bool transposeB) {
    numerics::t_intel_matrix_matrix_mult_f(A, B, C, m, n, k, transposeA, transposeB);
}

void t_intel_matrix_matrix_mult_d(const double* A, const double* B, double* C, int m, int n, int k,
                                  bool transposeA, bool transposeB) {
    numerics::t_intel_matrix_matrix_mult_d(A, B, C, m, n, k, transposeA, transposeB);
}

void t_intel_matrix_vector_mult_f(const float* A, const float* x, float* y, int m, int n,
                                  bool transposeA) {
    numerics::t_intel_matrix_vector_mult_f(A, x, y, m, n, transposeA);
}

void t_intel_matrix_vector_mult_d(const double* A, const double* x, double* y, int m, int n,
                                  bool transposeA) {
    numerics::t_intel_matrix_vector_mult_d(A, x, y, m, n, transposeA);
}
