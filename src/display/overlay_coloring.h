// The colours of the shown maps, voxel by voxel, for every picture that they are painted over.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "display/overlay_kernels.h"
#include "display/shown_maps.h"

#include <cstdint>
#include <span>
#include <vector>

/// Index into the contrast colours for a voxel at which the maps with a bit in `passing` (not 0)
/// reach the threshold, out of `nrOfMaps` (1 to 4) shown ones.
[[nodiscard]] int multiMapColorIndex(unsigned passing, int nrOfMaps);

/// Gives voxels their colours: those of multiMapColorIndex() or significanceColors(), and 0 for
/// voxels that are not shown: below the threshold, in too small a cluster, not a number.
class OverlayColoring {
public:
    /// `maps`, not empty, must live as long.
    OverlayColoring(const ShownMaps& maps, const OverlayThresholds& thresholds);

    /// Of consecutive voxels within one slice, the first of which is this pixel of it.
    void colorStretch(int slice, size_t pixel, std::span<uint32_t> colors) const;
    /// Of voxels anywhere, by their index in the volume; a negative one is shown in no colour. At
    /// the others each map must have a value.
    void colorVoxels(std::span<const int32_t> voxels, std::span<uint32_t> colors);

private:
    [[nodiscard]] bool filtersClusters() const {
        return maps_.clusterSizes && thresholds_.filtersClusters();
    }
    void colorValues(const OverlayStretch& stretch, std::span<uint32_t> colors) const;
    [[nodiscard]] int clusterSize(size_t voxel) const;

    const ShownMaps& maps_;
    const OverlayThresholds thresholds_;
    PackedColors table_;
    std::array<uint32_t, 1u << ContrastDefinitions::maximumShownMaps> colorOfSet_{};
    std::vector<float> gathered_; ///< values of the voxels that colorVoxels() got, map by map
    std::vector<int> gatheredSizes_;
};
