// Statistical maps for tests.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "stats/statistical_maps.h"

#include <gtest/gtest.h>
#include <numeric>

/// Zeroed maps of the first contrasts, all in use, shown and with `state`.
inline StatisticalMaps mapsInUse(int sizeX, int sizeY, int nrOfSlices, int count, int state = 1) {
    StatisticalMaps maps;
    EXPECT_TRUE(maps.allocateMaps(count, {sizeX, sizeY, nrOfSlices}));
    maps.NrOfActiveContrasts = maps.NrOfShownMaps = count;
    maps.states.assign(size_t(count), state);
    maps.contrastOfMap.resize(size_t(count));
    std::iota(maps.contrastOfMap.begin(), maps.contrastOfMap.end(), 0);
    return maps;
}
