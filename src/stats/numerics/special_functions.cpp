// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/numerics/special_functions.h"

#include "stats/numerics/failures.h"

#include <array>
#include <cmath>
#include <limits>
#include <numbers>

namespace numerics {

namespace {

/// Gamma(x + 1) = (x + g + 1/2)^(x + 1/2) exp(-(x + g + 1/2)) sqrt(2 pi) (c0 + sum of ck / (x +
/// k)).
double logGamma(double x) {
    constexpr double g = 5.0;
    constexpr double leading = 1.000000000190015;
    constexpr std::array<double, 6> coefficients = {76.18009172947146,     -86.50532032941677,
                                                    24.01409824083091,     -1.231739572450155,
                                                    0.1208650973866179e-2, -0.5395239384953e-5};
    double series = leading;
    for (size_t k = 0; k < coefficients.size(); ++k)
        series += coefficients[k] / (x + double(k + 1));
    const double base = x + g + 0.5;
    return (x + 0.5) * std::log(base) - base +
           std::log(std::sqrt(2.0 * std::numbers::pi) * series / x);
}

/// Numerator k (from 1) of the fraction 1 + d1 / (1 + d2 / (1 + ...)).
double fractionNumerator(int k, double a, double b, double x) {
    const int pairs = k / 2;
    const double m = pairs;
    const double shifted = a + 2.0 * m;
    if (k % 2 == 0)
        return m * (b - m) * x / ((shifted - 1.0) * shifted);
    return -(a + m) * (a + b + m) * x / (shifted * (shifted + 1.0));
}

double awayFromZero(double value) {
    constexpr double smallest = 1e-300;
    return std::abs(value) < smallest ? smallest : value;
}

} // namespace

float gammln(float x) {
    return float(logGamma(double(x)));
}

double betacf(double a, double b, double x) {
    // Lentz's method as modified by Thompson and Barnett: it carries the ratios of successive
    // numerators and denominators, so that neither overflows.
    constexpr int maximumSteps = 10000;
    constexpr double accuracy = 4.0 * std::numeric_limits<double>::epsilon();
    double fraction = 1.0;
    double numeratorRatio = 1.0;
    double denominatorRatio = 0.0;
    for (int k = 1; k <= maximumSteps; ++k) {
        const double numerator = fractionNumerator(k, a, b, x);
        denominatorRatio = 1.0 / awayFromZero(1.0 + numerator * denominatorRatio);
        numeratorRatio = awayFromZero(1.0 + numerator / numeratorRatio);
        const double change = numeratorRatio * denominatorRatio;
        fraction *= change;
        if (std::abs(change - 1.0) <= accuracy)
            return 1.0 / fraction;
    }
    nrerror("FATAL ERROR: a or b too big, or MAXIT too small in betacf");
    return 0.0;
}

double betai(double a, double b, double x) {
    if (!(x >= 0.0 && x <= 1.0)) {
        nrerror("FATAL ERROR: Bad x in routine betai.");
        return 0.0;
    }
    if (a <= 0.0)
        return 1.0;
    if (b <= 0.0 || x == 0.0)
        return 0.0;
    if (x == 1.0)
        return 1.0;
    const double front = std::exp(logGamma(a + b) - logGamma(a) - logGamma(b) + a * std::log(x) +
                                  b * std::log1p(-x));
    // The fraction converges fast on one side of the mean only; the other side is its mirror image.
    if (x < (a + 1.0) / (a + b + 2.0))
        return front * betacf(a, b, x) / a;
    return 1.0 - front * betacf(b, a, 1.0 - x) / b;
}

} // namespace numerics
