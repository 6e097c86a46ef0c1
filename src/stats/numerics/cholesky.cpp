// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/numerics/cholesky.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace numerics {

namespace {

/// The lower triangle becomes L.
bool factorise(std::vector<double>& a, size_t n) {
    for (size_t i = 0; i < n; ++i) {
        double* row = a.data() + i * n;
        for (size_t j = 0; j <= i; ++j) {
            const double* other = a.data() + j * n;
            const double rest = row[j] - std::inner_product(row, row + j, other, 0.0);
            if (j < i)
                row[j] = rest / other[j];
            else if (rest > 0.0)
                row[i] = std::sqrt(rest);
            else
                return false;
        }
    }
    return true;
}

/// The inverse of L, row by row; zeros above the diagonal.
std::vector<double> inverseOfLower(const std::vector<double>& l, size_t n) {
    std::vector<double> inverse(n * n, 0.0);
    for (size_t i = 0; i < n; ++i) {
        double* row = inverse.data() + i * n;
        for (size_t k = 0; k < i; ++k) {
            const double factor = l[i * n + k];
            const double* other = inverse.data() + k * n;
            for (size_t j = 0; j <= k; ++j)
                row[j] -= factor * other[j];
        }
        const double pivot = l[i * n + i];
        row[i] = 1.0;
        for (size_t j = 0; j <= i; ++j)
            row[j] /= pivot;
    }
    return inverse;
}

} // namespace

bool invertPositiveDefinite(std::vector<double>& matrix, size_t n) {
    if (!factorise(matrix, n))
        return false;
    const std::vector<double> lower = inverseOfLower(matrix, n);
    std::ranges::fill(matrix, 0.0);
    for (size_t k = 0; k < n; ++k) {
        const double* row = lower.data() + k * n;
        for (size_t i = 0; i <= k; ++i)
            for (size_t j = 0; j <= i; ++j)
                matrix[i * n + j] += row[i] * row[j];
    }
    for (size_t i = 0; i < n; ++i)
        for (size_t j = 0; j < i; ++j)
            matrix[j * n + i] = matrix[i * n + j];
    return true;
}

} // namespace numerics
