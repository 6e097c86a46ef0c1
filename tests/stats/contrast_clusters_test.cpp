// The cluster filter: sizes by the rules of labelling, and what it lets through.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/clusters.h"

#include <gtest/gtest.h>
#include <limits>
#include <set>

namespace {

/// One map of three slices with `value` in all voxels, in use with `state`.
StatisticalMaps oneMap(int sizeX, int sizeY, float value, int state = 1) {
    StatisticalMaps maps;
    maps.sizeX = sizeX;
    maps.sizeY = sizeY;
    maps.nrOfSlices = 3;
    EXPECT_TRUE(maps.allocateMaps(1));
    std::ranges::fill(maps.ContrastMaps[0].span(), value);
    maps.NrOfActiveContrasts = 1;
    maps.states = {state};
    maps.contrastOfMap = {0};
    return maps;
}

TEST(Clusters, ShapesHaveTheSizesThatTheRulesGive) {
    struct Case {
        const char* name;
        std::vector<std::string> rows;
        std::set<int> sizes;
    };
    std::vector<std::string> speckles(220, std::string(220, '.'));
    for (size_t i = 0; i < 220 * 220; i += 2)
        speckles[i / 220][i % 220] = i / 220 % 2 == 0 ? '#' : '.';
    const Case cases[] = {
        {"U: arms joined at the bottom", {"#...#", "#...#", "#####"}, {0, 9}},
        {"V, joined by corners", {"#...#", ".#.#.", "..#.."}, {0, 5}},
        {"edges of a row don't touch", {"#...", "...#", "#..."}, {0, 1}},
        {"spiral", {"#######", "#.....#", "#.###.#", "#.#...#", "#.#####"}, {0, 23}},
        // The middle piece is linked to the first already, so its touch with the last is not noted.
        {"second equivalence", {"#.#......", ".#.#####.", "........#", ".....###."}, {0, 3, 9}},
        {"labels linked in a loop", {"####.", "#...#", "#.##.", ".##.."}, {0, 11}},
        {"more than ten thousand labels", speckles, {0, 1}},
    };
    for (const Case& item : cases) {
        const int sizeX = int(item.rows[0].size());
        StatisticalMaps maps = oneMap(sizeX, int(item.rows.size()), 0.0f);
        for (size_t i = 0; i < maps.sliceVoxels(); ++i)
            if (item.rows[i / size_t(sizeX)][i % size_t(sizeX)] == '#')
                maps.ContrastMaps[0][maps.sliceVoxels() + i] = maps.Threshold; // just reaches it
        computeClusterSizes(maps, false);
        const std::vector<int>& sizes = maps.ClusterSizeSlices[1];
        EXPECT_EQ(std::set<int>(sizes.begin(), sizes.end()), item.sizes) << item.name;
    }
}

TEST(Clusters, StateAndSliceDecideWhatIsShown) {
    using Case = std::tuple<int, float, bool>;
    for (const auto& [state, value, shown] :
         {Case{1, 5.0f, true},
          {1, -5.0f, false},
          {2, 5.0f, false},
          {2, -5.0f, true},
          {3, -3.0f, true},
          {3, 2.99f, false},
          {3, std::numeric_limits<float>::quiet_NaN(), false}}) {
        StatisticalMaps maps = oneMap(2, 2, value, state);
        computeClusterSizes(maps, false);
        EXPECT_EQ(maps.ClusterSizeSlices[1][0], shown ? 4 : 0);
        // The outermost slices have no clusters; their voxels are shown with cluster size 1 only.
        for (const int pixels : {1, 4, 5}) {
            maps.ClusterSizePixels = pixels;
            EXPECT_EQ(voxelIsShown(maps, 1, 3), shown && pixels < 5 ? 1u : 0u);
            EXPECT_EQ(voxelIsShown(maps, 0, 3), shown && pixels < 2 ? 1u : 0u);
        }
    }
}

TEST(Clusters, AtMostFourMapsAreShownAndOneOfAConjunction) {
    StatisticalMaps maps = oneMap(3, 3, 0.0f);
    ASSERT_TRUE(maps.allocateMaps(5));
    maps.NrOfActiveContrasts = 5;
    maps.states = {1, 1, 2, 1, 1};
    maps.ClusterSizePixels = 1;
    for (const auto& [map, value] : {std::pair(1, 4.0f), {2, -4.0f}, {4, 4.0f}})
        maps.ContrastMaps[size_t(map)][9] = value;
    computeClusterSizes(maps, false);
    EXPECT_EQ(voxelIsShown(maps, 1, 0), 0b0110u) << "the fifth map is not shown";
    computeClusterSizes(maps, true);
    EXPECT_EQ(maps.NrOfShownMaps, 1);
}

} // namespace
