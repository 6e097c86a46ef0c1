// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/design_rank.h"

std::vector<double> normalMatrix(std::span<const float> x, size_t p) {
    std::vector<double> xx(p * p, 0.0);
    for (size_t t = 0; t + p <= x.size(); t += p)
        for (size_t i = 0; i < p; ++i)
            for (size_t j = i; j < p; ++j)
                xx[i * p + j] += double(x[t + i]) * double(x[t + j]);
    for (size_t i = 0; i < p; ++i)
        for (size_t j = 0; j < i; ++j)
            xx[i * p + j] = xx[j * p + i];
    return xx;
}

bool isEstimable(std::span<const float> contrast, std::span<const double> xx,
                 std::span<const double> inverse) {
    constexpr double smallestLoss = 0.01;
    const size_t p = contrast.size();
    std::vector<double> weights(p, 0.0); // c' G
    for (size_t i = 0; i < p; ++i)
        for (size_t j = 0; j < p; ++j)
            weights[j] += double(contrast[i]) * inverse[i * p + j];
    double lost = 0.0;
    double whole = 0.0;
    for (size_t j = 0; j < p; ++j) {
        const double c = double(contrast[j]);
        if (c == 0.0)
            continue;
        const double square = xx[j * p + j];
        if (!(square > 0.0))
            return false;
        double kept = 0.0; // entry j of c' G X'X
        for (size_t k = 0; k < p; ++k)
            kept += weights[k] * xx[k * p + j];
        lost += c * (c - kept) / square;
        whole += c * c / square;
    }
    return lost <= smallestLoss * smallestLoss * whole;
}
