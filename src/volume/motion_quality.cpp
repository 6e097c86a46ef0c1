// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/motion_quality.h"

#include "base/simd_clones.h"

#include <cmath>
#include <cstddef>
#include <numbers>

namespace {

struct MaskedSums {
    int64_t voxels = 0;
    int64_t before = 0;
    int64_t squares = 0; ///< of the differences
};

VELO_SIMD_CLONES
MaskedSums maskedSums(const int16_t* before, const int16_t* now, const uint8_t* mask,
                      size_t count) {
    MaskedSums sums;
    for (size_t v = 0; v < count; ++v) {
        const int inside = mask[v] != 0 ? 1 : 0;
        const int64_t difference = inside * (int(now[v]) - int(before[v]));
        sums.voxels += inside;
        sums.before += inside * int(before[v]);
        sums.squares += difference * difference;
    }
    return sums;
}

} // namespace

double framewiseDisplacement(const std::array<float, 6>& before, const std::array<float, 6>& now) {
    constexpr double millimetresPerDegree = std::numbers::pi / 180.0 * headRadiusMillimetres;
    double sum = 0.0;
    for (size_t i = 0; i < before.size(); ++i)
        sum += std::abs(double(now[i]) - double(before[i])) * (i < 3 ? 1.0 : millimetresPerDegree);
    return sum;
}

double volumeDVARS(std::span<const int16_t> before, std::span<const int16_t> now,
                   std::span<const uint8_t> mask) {
    if (before.size() != mask.size() || now.size() != mask.size())
        return 0.0;
    const MaskedSums sums = maskedSums(before.data(), now.data(), mask.data(), mask.size());
    if (sums.before <= 0)
        return 0.0;
    const double voxels = double(sums.voxels);
    return std::sqrt(double(sums.squares) / voxels) / (double(sums.before) / voxels) * 100.0;
}
