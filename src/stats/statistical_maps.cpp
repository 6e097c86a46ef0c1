// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/statistical_maps.h"

#include "stats/contrasts.h"

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

void StatisticalMaps::useMaps(int count) {
    for (int map = count; map < std::min(NrOfActiveContrasts, nrOfMaps); ++map)
        std::ranges::fill(this->map(map), 0.0f);
    NrOfActiveContrasts = count;
}

int StatisticalMaps::nrOfMapsToShow(bool conjunction) const {
    const int most = conjunction ? 1 : ContrastDefinitions::maximumShownMaps;
    return std::min({NrOfActiveContrasts, most, nrOfMaps, int(states.size())});
}
