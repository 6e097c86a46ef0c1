// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/statistical_maps.h"

#include <algorithm>
#include <limits>

bool StatisticalMaps::allocateMaps(int count, const VolumeSize& sizeOfEach) {
    size = sizeOfEach;
    ContrastMaps.clear();
    ClusterSizeSlices.clear();
    states.clear();
    contrastOfMap.clear();
    NrOfActiveContrasts = 0;
    NrOfShownMaps = 0;
    if (count <= 0)
        return true;

    // All maps together are held against the memory first, so that a request far too large fails at
    // once and not after half of it has been zeroed.
    const size_t voxels = size.samples();
    if (voxels > std::numeric_limits<size_t>::max() / size_t(count) ||
        !memoryIsAvailable(size_t(count) * voxels, sizeof(float)))
        return false;
    ContrastMaps.resize(size_t(count));
    for (ZeroedBuffer<float>& map : ContrastMaps) {
        if (!map.allocate(voxels)) {
            ContrastMaps.clear();
            return false;
        }
    }
    return true;
}

int StatisticalMaps::nrOfMapsToShow(bool conjunction) const {
    constexpr int maximumShownMaps = 4;
    const int wanted = std::min(NrOfActiveContrasts, conjunction ? 1 : maximumShownMaps);
    int count = 0;
    while (count < wanted && size_t(count) < std::min(ContrastMaps.size(), states.size()) &&
           ContrastMaps[size_t(count)].size() >= size.samples())
        ++count;
    return count;
}
