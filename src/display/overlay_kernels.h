// The colours of statistical maps, for stretches of voxels at once.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "stats/contrasts.h"
#include "stats/overlay_colors.h"
#include "stats/thresholds.h"

#include <array>
#include <cstdint>
#include <span>

/// Colours as a picture has them, 0xffRRGGBB.
using PackedColors = std::array<uint32_t, nrOfOverlayColors>;

/// The shown maps of a stretch of voxels.
struct OverlayStretch {
    size_t nrOfMaps; ///< 1 to maximumShownMaps
    std::array<const float*, ContrastDefinitions::maximumShownMaps> values;
    std::array<int, ContrastDefinitions::maximumShownMaps> states;
};

/// The colour of the largest shown value of each voxel, of which the first of equal ones wins; 0
/// where none reaches the threshold. It is entry 0 to 9 in equal steps from Threshold to
/// ColorMaxThreshold and 9 above; 10 more for a map with a negative value. An empty range of
/// thresholds gives the strongest colour.
void significanceColors(const OverlayStretch& stretch, const OverlayThresholds& thresholds,
                        const PackedColors& colors, std::span<uint32_t> result);

/// The entry of `colorOfSet` for the maps that reach the threshold, bit i for map i; entry 0 should
/// be 0.
void multiMapColors(
    const OverlayStretch& stretch, float threshold,
    const std::array<uint32_t, 1u << ContrastDefinitions::maximumShownMaps>& colorOfSet,
    std::span<uint32_t> result);

/// Sets the colours of voxels in clusters below this size to 0, and of those without a size.
void dropSmallClusters(std::span<const int> sizes, int leastSize, std::span<uint32_t> colors);

/// Replaces the pixels by the colours that are not 0.
void paintOver(uint32_t* pixels, std::span<const uint32_t> colors);
