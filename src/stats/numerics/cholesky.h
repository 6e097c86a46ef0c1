// Symmetric positive definite matrices.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <vector>

namespace numerics {

/// Replaces a symmetric matrix (n x n, row-major) by its inverse, from its factors L L' (G. Golub
/// and C. Van Loan, Matrix Computations, section 4.2). False, with the matrix destroyed, when it is
/// not positive definite. What rounding leaves of a dependent column may pass as positive: the
/// caller looks at the size of the inverse.
[[nodiscard]] bool invertPositiveDefinite(std::vector<double>& matrix, size_t n);

} // namespace numerics
