// Turning samples into the coefficients of a B-spline.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>

/// Cubic for pictures; quintic where a small error of phase counts, as in the estimation of motion.
enum class SplineDegree { Cubic = 3, Quintic = 5 };

/// Lines that are filtered side by side at most. Those of 100 rows are 100 KB: they stay in the
/// second-level cache while the recursions pass there and back.
inline constexpr size_t mostSplineLines = 256;

/// Filters `width` lines in place (M. Unser, see SplineVolume), mirrored at both ends. The values
/// at an index of the lines stand side by side; those at the next of the `n` indices stand `stride`
/// values further on.
void filterSplineLines(float* values, int n, size_t stride, size_t width, SplineDegree degree);
