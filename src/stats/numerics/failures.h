// How the numerical routines fail: the run-time error, and allocation that ends with it.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <vector>

namespace numerics {

/// Prints the text to standard error and ends the program with status 1. Returns when a test
/// intercepts the end of the program, so the caller must then return a failure.
void nrerror(const char* text);

// Each fills `values` with zeros. When memory runs out, the program ends through nrerror() with the
// text stated; where that returns, the result is false and the array is empty.

/// "allocation failure in vector()".
[[nodiscard]] bool allocateVector(std::vector<float>& values, size_t count);
/// "allocation failure in dvector()".
[[nodiscard]] bool allocateVector(std::vector<double>& values, size_t count);
/// rows x columns without gaps; "allocation failure 2 in matrix()".
[[nodiscard]] bool allocateMatrix(std::vector<float>& values, size_t rows, size_t columns);

} // namespace numerics
