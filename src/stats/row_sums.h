// Weighted sums of rows, for the files of kernels only.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <cstddef>

// Inlined into each clone of a kernel, so that they are compiled for its instruction set.

/// sums += weight[0] * row 0, then weight[1] * row 1, ..., in float.
template<int rows>
[[gnu::always_inline]] inline void addRows(const float* weights, size_t weightStride,
                                           const float* values, size_t stride, size_t count,
                                           float* __restrict sums) {
    for (size_t v = 0; v < count; ++v) {
        float sum = sums[v];
        for (int j = 0; j < rows; ++j)
            sum += weights[size_t(j) * weightStride] * values[size_t(j) * stride + v];
        sums[v] = sum;
    }
}

/// sums = the weighted sum of `nrOfRows` rows, in float, rows in order.
[[gnu::always_inline]] inline void sumRows(const float* weights, size_t weightStride, int nrOfRows,
                                           const float* values, size_t stride, size_t count,
                                           float* sums) {
    std::fill_n(sums, count, 0.0f);
    int j = 0;
    for (; j + 8 <= nrOfRows; j += 8)
        addRows<8>(weights + size_t(j) * weightStride, weightStride, values + size_t(j) * stride,
                   stride, count, sums);
    for (; j + 4 <= nrOfRows; j += 4)
        addRows<4>(weights + size_t(j) * weightStride, weightStride, values + size_t(j) * stride,
                   stride, count, sums);
    for (; j < nrOfRows; ++j)
        addRows<1>(weights + size_t(j) * weightStride, weightStride, values + size_t(j) * stride,
                   stride, count, sums);
}
