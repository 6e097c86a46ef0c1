// The directions that a design has: what can be estimated from it, and what can not.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <span>
#include <vector>

/// X'X (p x p) in double of a design in float, n x p, row by volume.
[[nodiscard]] std::vector<double> normalMatrix(std::span<const float> x, size_t p);

/// True when the data determine c'b: c lies in the space of the rows of X. `xx` and `inverse` as
/// invertNormalMatrix() takes and gives them. A contrast of which less than a hundredth is lost,
/// with columns of unit length, counts as estimable: what is lost can't be seen in the data.
[[nodiscard]] bool isEstimable(std::span<const float> contrast, std::span<const double> xx,
                               std::span<const double> inverse);
