// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/motion_quality.h"

#include "base/simd_clones.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <numbers>

namespace {

constexpr float none = std::numeric_limits<float>::quiet_NaN();

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
    constexpr double millimetresPerDegree = std::numbers::pi / 180.0 * framewiseDisplacementRadius;
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

std::vector<float> framewiseDisplacements(const MotionCorrection& motion, int nrOfVolumes,
                                          int first) {
    const auto parametersOf = [&motion](size_t volume) {
        std::array<float, nrOfMotionParameters> parameters{};
        for (size_t i = 0; i < parameters.size(); ++i)
            parameters[i] = motion.motionParameters[i][volume];
        return parameters;
    };
    std::vector<float> values(size_t(std::max(nrOfVolumes, 0)), none);
    const size_t end = std::min(values.size(), motion.motionParameters[0].size());
    for (auto v = size_t(std::max(first, 1)); v < end; ++v)
        values[v] = float(framewiseDisplacement(parametersOf(v - 1), parametersOf(v)));
    return values;
}

bool RunDVARS::update(const RunVolumes& volumes, int nrOfVolumes, std::span<const uint8_t> mask,
                      int atMost) {
    const size_t end = std::min(size_t(std::max(nrOfVolumes, 0)), volumes.size());
    if (mask.empty() || mask.size() != volumes.samplesOfEach())
        return true;
    for (int computed = 0; values_.size() < end; ++computed) {
        const size_t v = values_.size();
        if (computed >= atMost)
            return false;
        values_.push_back(v == 0 ? none : float(volumeDVARS(volumes[v - 1], volumes[v], mask)));
    }
    return true;
}
