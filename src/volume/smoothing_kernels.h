// The inner loops of spatial smoothing.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

// Each result is the sum of tap * sample in float, from the first tap to the last, clamped to 0 to
// 32767, plus 0.5 in float, truncated.

/// result[i] = sum over k of taps[k] * rows[k][i], for `count` values. `result` overlaps no row.
void smoothRows(std::span<const float> taps, const float* const* rows, size_t count, float* result);
void smoothRows(std::span<const float> taps, const float* const* rows, size_t count,
                int16_t* result);

/// Smooths along a row: a sample outside it is replaced by the centre sample. `result` does not
/// overlap the row. The number of taps is odd.
void smoothAlongRow(std::span<const float> taps, std::span<const float> row, float* result);

/// Reads samples as unsigned.
void convertSamples(const int16_t* samples, size_t count, float* result);
