// Memory of the numeric routines: without it they can't go on.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <vector>

namespace numerics {

// Each makes `values` an array of zeros. When memory runs out, the program ends through nrerror()
// with the text that is stated; where that returns, the result is false and the array is empty.

/// "allocation failure in vector()".
[[nodiscard]] bool allocateVector(std::vector<float>& values, size_t count);
/// "allocation failure in dvector()".
[[nodiscard]] bool allocateVector(std::vector<double>& values, size_t count);
/// rows x columns without gaps; "allocation failure 2 in matrix()".
[[nodiscard]] bool allocateMatrix(std::vector<float>& values, size_t rows, size_t columns);

} // namespace numerics
