// Natural cubic splines, for smooth curves through few points.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <span>
#include <vector>

namespace numerics {

/// Second derivatives of the natural cubic spline through (x, y) at its points; zero at both ends.
/// x ascends strictly. Fewer than three points give zeros: a straight line.
[[nodiscard]] std::vector<float> splineSecondDerivatives(std::span<const float> x,
                                                         std::span<const float> y);

/// Value of the spline at a position. Outside the points the first or last piece is extrapolated.
/// Without points the value is 0, with one point its y; between two equal x it is the left y.
[[nodiscard]] float splineValue(std::span<const float> x, std::span<const float> y,
                                std::span<const float> secondDerivatives, float at);

} // namespace numerics
