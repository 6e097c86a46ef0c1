// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/spline_filter.h"

#include "base/simd_clones.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace {

// The samples are the coefficients filtered with the spline's values at the voxels. The inverse is
// a causal and an anticausal recursion for each pole, and a gain.
struct Recursions {
    std::array<float, 2> poles;
    size_t nrOfPoles;
    float gain;
};
constexpr Recursions cubic{{-0.26794919243112270f, 0.0f}, 1, 6.0f}; // sqrt(3) - 2
constexpr Recursions quintic{{-0.43057534709997430f, -0.04309628820326465f}, 2, 120.0f};
constexpr float negligible = 1e-8f; // below the precision of float

/// One recursion there and back along `n` rows of `width` values that lie `stride` apart; each
/// value of a row, at most `mostSplineLines`, belongs to a line of its own.
VELO_SIMD_CLONES void filterLines(float* values, int n, size_t stride, size_t width, float pole,
                                  float gain) {
    const auto row = [=](int i) { return values + size_t(i) * stride; };
    // Mirrored at both ends, the line has the period 2 n - 2.
    const int period = 2 * n - 2;
    const int horizon = int(std::log(negligible) / std::log(-pole)) + 1;
    const int terms = std::min(horizon, period);
    std::array<float, mostSplineLines> start;
    std::fill_n(start.begin(), width, 0.0f);
    for (int k = terms - 1; k >= 0; --k) {
        const float* term = row(k < n ? k : period - k);
        for (size_t i = 0; i < width; ++i)
            start[i] = start[i] * pole + term[i];
    }
    const float ofPeriods = gain / (1.0f - (terms < horizon ? std::pow(pole, float(terms)) : 0.0f));
    for (size_t i = 0; i < width; ++i)
        row(0)[i] = start[i] * ofPeriods;
    for (int k = 1; k < n; ++k) {
        float* now = row(k);
        const float* last = row(k - 1);
        for (size_t i = 0; i < width; ++i)
            now[i] = now[i] * gain + last[i] * pole;
    }
    const float end = pole / (pole * pole - 1.0f);
    float* last = row(n - 1);
    const float* beforeLast = row(n - 2);
    for (size_t i = 0; i < width; ++i)
        last[i] = end * (last[i] + pole * beforeLast[i]);
    for (int k = n - 2; k >= 0; --k) {
        float* now = row(k);
        const float* next = row(k + 1);
        for (size_t i = 0; i < width; ++i)
            now[i] = pole * (next[i] - now[i]);
    }
}

} // namespace

void filterSplineLines(float* values, int n, size_t stride, size_t width, SplineDegree degree) {
    if (n < 2)
        return; // a constant is its own coefficient
    const Recursions& recursions = degree == SplineDegree::Cubic ? cubic : quintic;
    for (size_t i = 0; i < recursions.nrOfPoles; ++i)
        filterLines(values, n, stride, width, recursions.poles[i], i == 0 ? recursions.gain : 1.0f);
}
