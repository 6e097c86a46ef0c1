// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/statistical_maps.h"

#include <algorithm>
#include <limits>

bool StatisticalMaps::allocateMaps(int count, const VolumeSize& sizeOfEach) {
    ContrastMaps.release();
    ClusterSizeSlices.clear();
    states.clear();
    contrastOfMap.clear();
    nrOfMaps = 0;
    NrOfActiveContrasts = 0;
    NrOfShownMaps = 0;
    size = sizeOfEach;
    const size_t voxels = size.samples();
    if (count <= 0)
        return true;
    if (voxels > std::numeric_limits<size_t>::max() / size_t(count) ||
        !ContrastMaps.allocate(size_t(count) * voxels))
        return false;
    nrOfMaps = count;
    return true;
}

int StatisticalMaps::nrOfMapsToShow(bool conjunction) const {
    constexpr int maximumShownMaps = 4;
    return std::min(
        {NrOfActiveContrasts, conjunction ? 1 : maximumShownMaps, nrOfMaps, int(states.size())});
}
