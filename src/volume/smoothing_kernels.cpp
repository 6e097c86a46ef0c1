// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/smoothing_kernels.h"

#include "volume/gaussian_kernel.h"

#include <algorithm>

namespace {

/// Results that are summed together: their sums stay in the first-level cache.
constexpr size_t sumBlock = 256;
constexpr float largestSample = 32767.0f;

/// sums += taps[0] * row 0, then taps[1] * row 1, ... Taking several rows at once saves passing the
/// sums through memory.
template<int nrOfRows>
[[gnu::always_inline]] inline void addRows(const float* taps, const float* const* rows,
                                           size_t first, size_t count, float* __restrict sums) {
    for (size_t i = 0; i < count; ++i) {
        float sum = sums[i];
        for (int k = 0; k < nrOfRows; ++k)
            sum += taps[k] * rows[k][first + i];
        sums[i] = sum;
    }
}

template<typename Sample>
[[gnu::always_inline]] inline void roundSums(const float* sums, size_t count,
                                             Sample* __restrict result) {
    for (size_t i = 0; i < count; ++i) {
        const float notBelow = sums[i] > 0.0f ? sums[i] : 0.0f;
        const float limited = notBelow < largestSample ? notBelow : largestSample;
        result[i] = Sample(int32_t(limited + 0.5f));
    }
}

template<typename Sample>
[[gnu::always_inline]] inline void smoothAll(std::span<const float> taps, const float* const* rows,
                                             size_t count, Sample* __restrict result) {
    alignas(64) std::array<float, sumBlock> sums;
    for (size_t first = 0; first < count; first += sumBlock) {
        const size_t length = std::min(sumBlock, count - first);
        std::fill_n(sums.begin(), length, 0.0f);
        size_t k = 0;
        for (; k + 5 <= taps.size(); k += 5)
            addRows<5>(taps.data() + k, rows + k, first, length, sums.data());
        for (; k + 3 <= taps.size(); k += 3)
            addRows<3>(taps.data() + k, rows + k, first, length, sums.data());
        for (; k < taps.size(); ++k)
            addRows<1>(taps.data() + k, rows + k, first, length, sums.data());
        roundSums(sums.data(), length, result + first);
    }
}

} // namespace

void smoothRows(std::span<const float> taps, const float* const* rows, size_t count,
                float* result) {
    smoothAll(taps, rows, count, result);
}

void smoothRows(std::span<const float> taps, const float* const* rows, size_t count,
                int16_t* result) {
    smoothAll(taps, rows, count, result);
}

void smoothAlongRow(std::span<const float> taps, std::span<const float> row, float* result) {
    const size_t half = taps.size() / 2;
    const size_t length = row.size();
    const auto smoothAtBorder = [&](size_t x) {
        float sum = 0.0f;
        for (size_t k = 0; k < taps.size(); ++k) {
            const bool inside = x + k >= half && x + k - half < length;
            sum += taps[k] * (inside ? row[x + k - half] : row[x]);
        }
        roundSums(&sum, 1, result + x);
    };
    const size_t firstInner = std::min(half, length);
    const size_t firstAfter = std::max(firstInner, length - firstInner);
    for (size_t x = 0; x < firstInner; ++x)
        smoothAtBorder(x);
    if (firstAfter > firstInner) {
        std::array<const float*, GaussianKernel::maximumTaps> rows;
        for (size_t k = 0; k < taps.size(); ++k)
            rows[k] = row.data() + k;
        smoothRows(taps, rows.data(), firstAfter - firstInner, result + firstInner);
    }
    for (size_t x = firstAfter; x < length; ++x)
        smoothAtBorder(x);
}

void convertSamples(const int16_t* samples, size_t count, float* result) {
    for (size_t i = 0; i < count; ++i)
        result[i] = float(uint16_t(samples[i]));
}
