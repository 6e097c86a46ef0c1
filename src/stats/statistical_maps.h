// Statistical maps of a run, their thresholds and the sizes of their clusters.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/memory.h"

#include <vector>

/// 1 t, 2 and 3 correlation-like, 4 F.
enum class MapKind { T = 1, Correlation = 2, CrossCorrelation = 3, F = 4 };

/// One map is one float per voxel, x fastest, then y, then slices.
struct StatisticalMaps {
    int sizeX = 0;
    int sizeY = 0;
    int nrOfSlices = 0;
    std::vector<ZeroedBuffer<float>> ContrastMaps; ///< one for each defined contrast
    int NrOfActiveContrasts = 0;                   ///< the first so many maps are in use
    /// For each map in use: selection state 1 to 3 and the contrast that it belongs to.
    std::vector<int> states;
    std::vector<int> contrastOfMap;
    int NrOfShownMaps = 0; ///< at most 4

    MapKind MapType = MapKind::T;
    int MapDF1 = 0; ///< degrees of freedom; 0 when unknown
    int MapDF2 = 0;
    float Threshold = 3.0f;
    float ColorMaxThreshold = 8.0f;
    int ClusterSizePixels = 4;
    /// For each slice and pixel the size of its cluster; 0 below threshold. Empty when not
    /// computed.
    std::vector<std::vector<int>> ClusterSizeSlices;

    [[nodiscard]] size_t sliceVoxels() const { return size_t(sizeX) * size_t(sizeY); }
    [[nodiscard]] size_t volumeVoxels() const { return sliceVoxels() * size_t(nrOfSlices); }
    /// Allocates `count` zeroed maps. False, with none allocated, when memory runs out.
    [[nodiscard]] bool allocateMaps(int count);
};
