// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/numerics/spline.h"

#include <algorithm>

namespace numerics {

// On the piece between two points, with h their distance and a = (x1 - x) / h, b = 1 - a, the
// spline is a y0 + b y1 + ((a^3 - a) y0'' + (b^3 - b) y1'') h^2 / 6. Continuity of the first
// derivative at each inner point gives one row of a tridiagonal system in the second derivatives.
std::vector<float> splineSecondDerivatives(std::span<const float> x, std::span<const float> y) {
    const size_t count = std::min(x.size(), y.size());
    std::vector<float> result(count, 0.0f);
    if (count < 3)
        return result;
    std::vector<double> diagonal(count, 1.0);
    std::vector<double> right(count, 0.0);
    for (size_t i = 1; i + 1 < count; ++i) {
        const double before = double(x[i]) - x[i - 1];
        const double after = double(x[i + 1]) - x[i];
        const double slopes =
            (double(y[i + 1]) - y[i]) / after - (double(y[i]) - y[i - 1]) / before;
        // Elimination of the entry to the left; the first row holds only a zero.
        const double factor = i == 1 ? 0.0 : before / diagonal[i - 1];
        diagonal[i] = 2.0 * (before + after) - factor * before;
        right[i] = 6.0 * slopes - factor * right[i - 1];
    }
    double next = 0.0;
    for (size_t i = count - 2; i > 0; --i) {
        next = (right[i] - (double(x[i + 1]) - x[i]) * next) / diagonal[i];
        result[i] = float(next);
    }
    return result;
}

float splineValue(std::span<const float> x, std::span<const float> y,
                  std::span<const float> secondDerivatives, float at) {
    const size_t count = std::min({x.size(), y.size(), secondDerivatives.size()});
    if (count < 2)
        return count == 0 ? 0.0f : y[0];
    const auto inner = x.subspan(1, count - 2);
    const size_t left = size_t(std::upper_bound(inner.begin(), inner.end(), at) - inner.begin());
    const double h = double(x[left + 1]) - x[left];
    if (h == 0.0)
        return y[left];
    const double a = (double(x[left + 1]) - at) / h;
    const double b = 1.0 - a;
    return float(a * y[left] + b * y[left + 1] +
                 ((a * a * a - a) * secondDerivatives[left] +
                  (b * b * b - b) * secondDerivatives[left + 1]) *
                     h * h / 6.0);
}

} // namespace numerics
