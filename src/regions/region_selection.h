// Which voxels a rectangle on a slice selects.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "regions/region_of_interest.h"
#include "stats/statistical_maps.h"
#include "stats/thresholds.h"

#include <span>

/// What a selection looks at.
struct SelectionMaps {
    VolumeSize size; ///< of the volume
    const StatisticalMaps& maps;
    float Threshold = 3.0f;
    int ClusterSizePixels = 4;
    /// The shown maps of plug-ins, each of size.samples() values; may be empty.
    std::vector<std::span<const float>> pluginMaps = {};
};

/// The slices, from 0, that a selection of `nrOfSlices` around `slice` covers: [first, last], both
/// inside the volume; first > last for none.
struct SliceRange {
    int first = 0;
    int last = -1;
};
[[nodiscard]] SliceRange selectedSlices(int slice, int nrOfSlices, int slicesOfVolume);

/// The voxels of the rectangle in `nrOfSlices` slices, by slice, then y, then x, limited to the
/// volume. First those that are active: with selectOnlyMapVoxels and maps of plug-ins, where one of
/// these reaches Threshold in magnitude; else, with contrast maps and an active contrast, where the
/// cluster is at least ClusterSizePixels large (a slice without cluster sizes has none); else all.
/// If that gives none, all voxels of the rectangle and slices.
[[nodiscard]] VoxelList selectROIVoxels(const SelectionMaps& maps, bool selectOnlyMapVoxels,
                                        int nrOfSlices, const VoxelRectangle& rectangle);
