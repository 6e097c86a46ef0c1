// Statistical maps of a run and the sizes of their clusters.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/memory.h"
#include "volume/volume_geometry.h"

#include <cmath>
#include <span>
#include <vector>

/// 1 t, 2 and 3 correlation-like, 4 F.
enum class MapKind { T = 1, Correlation = 2, CrossCorrelation = 3, F = 4 };

/// Working memory of the cluster filter, kept between volumes to avoid allocation.
struct ClusterScratch {
    std::vector<float> combined; ///< one slice: the largest of the shown maps' values
    std::vector<int> labels;     ///< the same with a border of zeros above, left and right
    std::vector<int> links;      ///< by label: the equivalent label, 0 for none
    std::vector<int> roots;      ///< by label: the final label
    std::vector<int> sizes;      ///< by label: pixels of its cluster
};

/// One map is one float per voxel, x fastest, then y, then slices; map m starts at m *
/// size.samples(). Plug-ins get the block as it is.
struct StatisticalMaps {
    VolumeSize size;                  ///< of each map, as allocated
    ZeroedBuffer<float> ContrastMaps; ///< map after map, one for each defined contrast
    int nrOfMaps = 0;                 ///< in ContrastMaps
    int NrOfActiveContrasts = 0;      ///< the first this many maps are in use; the others are 0
    /// For each map in use: selection state 1 to 3 and the contrast that it belongs to.
    std::vector<int> states;
    std::vector<int> contrastOfMap;
    int NrOfShownMaps = 0; ///< at most 4

    MapKind MapType = MapKind::T;
    int MapDF1 = 0; ///< degrees of freedom; 0 when unknown
    int MapDF2 = 0;
    /// For each slice and pixel the size of its cluster; 0 below threshold. Empty when not
    /// computed.
    std::vector<std::vector<int>> ClusterSizeSlices;
    std::vector<ClusterScratch> clusterScratch; ///< one for each thread

    /// Values of a map below nrOfMaps.
    [[nodiscard]] std::span<float> map(int index) {
        return ContrastMaps.span().subspan(size_t(index) * size.samples(), size.samples());
    }
    [[nodiscard]] std::span<const float> map(int index) const {
        return ContrastMaps.span().subspan(size_t(index) * size.samples(), size.samples());
    }
    /// Replaces the maps by `count` zeroed ones of this size, none of them in use, and clears the
    /// cluster sizes. False, with none allocated, when memory runs out; the caller shows the
    /// message.
    [[nodiscard]] bool allocateMaps(int count, const VolumeSize& sizeOfEach);
    /// Changes NrOfActiveContrasts; maps that are not in use any more become 0.
    void useMaps(int count);
    /// How many maps are to be overlaid: the one map of a conjunction, else the first four of those
    /// in use. Maps that are not allocated don't count.
    [[nodiscard]] int nrOfMapsToShow(bool conjunction) const;
};

/// A map's value as its selection state shows it: the magnitude for 3, -value for 2, else the
/// value.
[[nodiscard]] inline float valueAsShown(float value, int state) {
    if (state == 3)
        return std::fabs(value);
    return state == 2 ? -value : value;
}
