// The cluster filter: which voxels of the shown maps are coloured.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/worker_pool.h"
#include "stats/thresholds.h"

/// Raises Threshold and ColorMaxThreshold to 0 and ClusterSizePixels to 1 where they are below,
/// sets NrOfShownMaps and, if there is a map to show, recomputes ClusterSizeSlices. With
/// `conjunction` only the first map is shown.
///
/// Clusters are two-dimensional, 8-connected, and formed on the largest of the shown maps' values,
/// so that both signs of a map can form one cluster. The first and the last slice have none.
///
/// The table of equivalent labels holds one link per label; a second equivalence of a label is
/// dropped. So this is not a full connected-component search: a winding region, such as a spiral,
/// can count as several clusters. The sizes in saved runs depend on this rule.
///
/// The threads share the slices; their number changes no bit of the result.
void computeClusterSizes(StatisticalMaps& maps, OverlayThresholds& thresholds, bool conjunction,
                         WorkerPool& workers = callersThread());

/// Which of the shown maps colour a voxel: bit i for map i, 0 when the voxel keeps its grey value.
/// A map passes where its value, as its state shows it, reaches Threshold. With ClusterSizePixels 1
/// the cluster sizes are ignored, so that slices without them are coloured too. `slice` and `pixel`
/// (x + size.x * y) lie inside the volume.
[[nodiscard]] inline unsigned voxelIsShown(const StatisticalMaps& maps,
                                           const OverlayThresholds& thresholds, int slice,
                                           size_t pixel) {
    if (thresholds.filtersClusters()) {
        if (size_t(slice) >= maps.ClusterSizeSlices.size())
            return 0;
        const std::vector<int>& sizes = maps.ClusterSizeSlices[size_t(slice)];
        if (pixel >= sizes.size() || sizes[pixel] < thresholds.ClusterSizePixels)
            return 0;
    }
    const size_t mapSamples = maps.size.samples();
    const float* value =
        maps.ContrastMaps.data() + size_t(slice) * maps.size.sliceSamples() + pixel;
    unsigned passing = 0;
    for (size_t map = 0; map < size_t(maps.NrOfShownMaps); ++map, value += mapSamples)
        if (valueAsShown(*value, maps.states[map]) >= thresholds.Threshold)
            passing |= 1u << map;
    return passing;
}
