// Simple measures of a time course.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <span>
#include <vector>

/// In double; 0 for no values.
[[nodiscard]] double meanOf(std::span<const float> values);

/// Mean over standard deviation (n - 1) of the curve; 0 for fewer than 2 values or without
/// variation.
[[nodiscard]] double temporalSignalToNoise(std::span<const float> values);

/// The curve without its linear trend (least squares), with its mean kept.
[[nodiscard]] std::vector<float> detrended(std::span<const float> values);

/// Percent change from the mean of the curve; all 0 when that is 0.
[[nodiscard]] std::vector<float> percentOfMean(std::span<const float> values);
