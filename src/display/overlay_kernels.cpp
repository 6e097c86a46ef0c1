// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/overlay_kernels.h"

#include "base/simd_clones.h"
#include "stats/statistical_maps.h"

#include <algorithm>
#include <limits>

namespace {

constexpr size_t blockSize = 256; ///< voxels whose values stay in registers and nearest cache

/// Of each voxel, the largest value as it is shown and what it is in its map.
struct LargestValues {
    alignas(32) float shown[blockSize];
    alignas(32) float value[blockSize];
};

/// Values that are not numbers are never larger.
template<int state>
[[gnu::always_inline]] inline void takeLarger(const float* values, size_t count,
                                              LargestValues& largest) {
    for (size_t v = 0; v < count; ++v) {
        const float shown = valueAsShown(values[v], state);
        const bool larger = shown > largest.shown[v];
        largest.shown[v] = larger ? shown : largest.shown[v];
        largest.value[v] = larger ? values[v] : largest.value[v];
    }
}

VELO_SIMD_CLONES void findLargest(const OverlayStretch& stretch, size_t from, size_t count,
                                  LargestValues& largest) {
    for (size_t v = 0; v < count; ++v) {
        largest.shown[v] = -std::numeric_limits<float>::infinity();
        largest.value[v] = 0.0f;
    }
    for (size_t map = 0; map < stretch.nrOfMaps; ++map) {
        const float* values = stretch.values[map] + from;
        if (stretch.states[map] == ContrastBoth)
            takeLarger<ContrastBoth>(values, count, largest);
        else if (stretch.states[map] == ContrastNegative)
            takeLarger<ContrastNegative>(values, count, largest);
        else
            takeLarger<ContrastPositive>(values, count, largest);
    }
}

VELO_SIMD_CLONES void codeSignificance(const LargestValues& largest,
                                       const OverlayThresholds& thresholds,
                                       const PackedColors& colors, size_t count,
                                       uint32_t* __restrict result) {
    constexpr int half = nrOfOverlayColors / 2;
    constexpr double strongest = half - 1;
    const float threshold = thresholds.Threshold;
    const float range = thresholds.ColorMaxThreshold - threshold;
    const bool isRange = range > 0.0f; // not for NaN
    alignas(32) int entries[blockSize];
    for (size_t v = 0; v < count; ++v) {
        const double position = double((largest.shown[v] - threshold) / range) * strongest;
        // Also the strongest where the position is NaN.
        const double inside = position < strongest ? position : strongest;
        const double limited = inside > 0.0 ? inside : 0.0;
        entries[v] = int(isRange ? limited : strongest) + (largest.value[v] < 0.0f ? half : 0);
    }
    const uint32_t* __restrict colorOfEntry = colors.data();
    for (size_t v = 0; v < count; ++v) {
        const uint32_t color = colorOfEntry[entries[v]];
        result[v] = largest.shown[v] >= threshold ? color : 0;
    }
}

VELO_SIMD_CLONES void addPassing(const float* values, int state, float threshold, uint32_t bit,
                                 size_t count, uint32_t* sets) {
    if (state == ContrastBoth)
        for (size_t v = 0; v < count; ++v)
            sets[v] |= valueAsShown(values[v], ContrastBoth) >= threshold ? bit : 0u;
    else if (state == ContrastNegative)
        for (size_t v = 0; v < count; ++v)
            sets[v] |= -values[v] >= threshold ? bit : 0u;
    else
        for (size_t v = 0; v < count; ++v)
            sets[v] |= values[v] >= threshold ? bit : 0u;
}

} // namespace

void significanceColors(const OverlayStretch& stretch, const OverlayThresholds& thresholds,
                        const PackedColors& colors, std::span<uint32_t> result) {
    LargestValues largest;
    for (size_t from = 0; from < result.size(); from += blockSize) {
        const size_t count = std::min(blockSize, result.size() - from);
        findLargest(stretch, from, count, largest);
        codeSignificance(largest, thresholds, colors, count, result.data() + from);
    }
}

void multiMapColors(
    const OverlayStretch& stretch, float threshold,
    const std::array<uint32_t, 1u << ContrastDefinitions::maximumShownMaps>& colorOfSet,
    std::span<uint32_t> result) {
    std::ranges::fill(result, 0);
    for (size_t map = 0; map < stretch.nrOfMaps; ++map)
        addPassing(stretch.values[map], stretch.states[map], threshold, 1u << map, result.size(),
                   result.data());
    for (uint32_t& entry : result)
        entry = colorOfSet[entry];
}

VELO_SIMD_CLONES void dropSmallClusters(std::span<const int> sizes, int leastSize,
                                        std::span<uint32_t> colors) {
    const size_t known = std::min(sizes.size(), colors.size());
    for (size_t v = 0; v < known; ++v)
        colors[v] = sizes[v] < leastSize ? 0 : colors[v];
    std::ranges::fill(colors.subspan(known), 0);
}

VELO_SIMD_CLONES void paintOver(uint32_t* pixels, std::span<const uint32_t> colors) {
    for (size_t v = 0; v < colors.size(); ++v)
        pixels[v] = colors[v] != 0 ? colors[v] : pixels[v];
}
