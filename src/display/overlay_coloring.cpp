// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/overlay_coloring.h"

#include <algorithm>
#include <limits>

namespace {

PackedColors packedColors(const OverlayColorTable& table) {
    constexpr uint32_t opaque = 0xff000000;
    PackedColors packed;
    const auto channel = [](int value) { return uint32_t(std::clamp(value, 0, 255)); };
    for (size_t i = 0; i < packed.size(); ++i)
        packed[i] = opaque | channel(table[i].red) << 16 | channel(table[i].green) << 8 |
                    channel(table[i].blue);
    return packed;
}

} // namespace

int multiMapColorIndex(unsigned passing, int nrOfMaps) {
    // By set of passing maps, bit i for map i. The colours of sets of three maps that hold map 3
    // and those of pairs with it don't follow the order of the bits.
    static constexpr std::array<int, 16> table{0, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 11, 10, 12, 13, 14};
    constexpr unsigned firstThree = 0b111;
    // Three shown maps that all pass take the entry of a fourth map.
    if (nrOfMaps == 3 && passing == firstThree)
        return 7;
    return table[passing & 0b1111];
}

OverlayColoring::OverlayColoring(const ShownMaps& maps, const OverlayThresholds& thresholds)
    : maps_(maps), thresholds_(thresholds), table_(packedColors(maps.colors)) {
    for (unsigned passing = 1; passing < colorOfSet_.size(); ++passing)
        colorOfSet_[passing] = table_[size_t(multiMapColorIndex(passing, maps_.count()))];
}

void OverlayColoring::colorValues(const OverlayStretch& stretch, std::span<uint32_t> colors) const {
    if (maps_.significanceColorCoding)
        significanceColors(stretch, thresholds_, table_, colors);
    else
        multiMapColors(stretch, thresholds_.Threshold, colorOfSet_, colors);
}

void OverlayColoring::colorStretch(int slice, size_t pixel, std::span<uint32_t> colors) const {
    OverlayStretch stretch{maps_.values.size(), {}, {}};
    for (size_t map = 0; map < stretch.nrOfMaps; ++map) {
        stretch.values[map] =
            maps_.values[map].data() + size_t(slice) * maps_.size.sliceSamples() + pixel;
        stretch.states[map] = maps_.states[map];
    }
    colorValues(stretch, colors);
    if (!filtersClusters())
        return;
    std::span<const int> sizes;
    if (size_t(slice) < maps_.clusterSizes->size())
        sizes = (*maps_.clusterSizes)[size_t(slice)];
    dropSmallClusters(sizes.subspan(std::min(pixel, sizes.size())), thresholds_.ClusterSizePixels,
                      colors);
}

int OverlayColoring::clusterSize(size_t voxel) const {
    const size_t slice = voxel / maps_.size.sliceSamples();
    const size_t pixel = voxel % maps_.size.sliceSamples();
    if (slice >= maps_.clusterSizes->size() || pixel >= (*maps_.clusterSizes)[slice].size())
        return 0;
    return (*maps_.clusterSizes)[slice][pixel];
}

void OverlayColoring::colorVoxels(std::span<const int32_t> voxels, std::span<uint32_t> colors) {
    constexpr float nothing = std::numeric_limits<float>::quiet_NaN(); // reaches no threshold
    OverlayStretch stretch{maps_.values.size(), {}, {}};
    gathered_.resize(voxels.size() * stretch.nrOfMaps);
    for (size_t map = 0; map < stretch.nrOfMaps; ++map) {
        float* const values = gathered_.data() + map * voxels.size();
        const float* const ofMap = maps_.values[map].data();
        for (size_t v = 0; v < voxels.size(); ++v)
            values[v] = voxels[v] < 0 ? nothing : ofMap[voxels[v]];
        stretch.values[map] = values;
        stretch.states[map] = maps_.states[map];
    }
    colorValues(stretch, colors);
    if (!filtersClusters())
        return;
    gatheredSizes_.assign(voxels.size(), 0);
    for (size_t v = 0; v < voxels.size(); ++v)
        if (colors[v] != 0)
            gatheredSizes_[v] = clusterSize(size_t(voxels[v]));
    dropSmallClusters(gatheredSizes_, thresholds_.ClusterSizePixels, colors);
}
