// The cluster filter: sizes by the labelling rules, and the voxels that pass.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/clusters.h"

#include "stats/maps_in_use.h"

#include <limits>
#include <set>

TEST(Clusters, ShapesHaveTheSizesThatTheRulesGive) {
    using Case = std::tuple<const char*, std::vector<std::string>, std::set<int>>;
    std::vector<std::string> speckles(220, std::string(220, '.'));
    for (size_t i = 0; i < 220 * 220; i += 2)
        speckles[i / 220][i % 220] = i / 220 % 2 == 0 ? '#' : '.';
    const Case cases[] = {
        {"U: arms joined at the bottom", {"#...#", "#...#", "#####"}, {0, 9}},
        {"edges of a row don't touch", {"#...", "...#", "#..."}, {0, 1}},
        {"spiral", {"#######", "#.....#", "#.###.#", "#.#...#", "#.#####"}, {0, 23}},
        // The middle piece is already linked to the first, so its link to the last is dropped.
        {"second equivalence", {"#.#......", ".#.#####.", "........#", ".....###."}, {0, 3, 9}},
        {"labels linked in a loop", {"####.", "#...#", "#.##.", ".##.."}, {0, 11}},
        {"more than ten thousand labels", speckles, {0, 1}},
    };
    for (const auto& [name, rows, expected] : cases) {
        const int sizeX = int(rows[0].size());
        OverlayThresholds thresholds;
        StatisticalMaps maps = mapsInUse(sizeX, int(rows.size()), 3, 1);
        for (size_t i = 0; i < maps.size.sliceSamples(); ++i)
            if (rows[i / size_t(sizeX)][i % size_t(sizeX)] == '#')
                maps.map(0)[maps.size.sliceSamples() + i] = thresholds.Threshold; // just reaches it
        computeClusterSizes(maps, thresholds, false);
        const std::vector<int>& sizes = maps.ClusterSizeSlices[1];
        EXPECT_EQ(std::set<int>(sizes.begin(), sizes.end()), expected) << name;
    }
}

TEST(Clusters, StateAndSliceDecideWhatIsShown) {
    constexpr float none = std::numeric_limits<float>::quiet_NaN();
    const std::tuple<int, float, bool> cases[] = {
        {1, 5.0f, true},  {1, -5.0f, false}, {2, 5.0f, false}, {2, -5.0f, true},
        {3, -3.0f, true}, {3, 2.99f, false}, {3, none, false}};
    for (const auto& [state, value, shown] : cases) {
        StatisticalMaps maps = mapsInUse(2, 2, 3, 1, state);
        std::ranges::fill(maps.map(0), value);
        OverlayThresholds thresholds{3.0f, -1.0f, 0};
        computeClusterSizes(maps, thresholds, false);
        EXPECT_EQ(thresholds, (OverlayThresholds{3.0f, 0.0f, 1}));
        EXPECT_EQ(maps.ClusterSizeSlices[1][0], shown ? 4 : 0);
        // The outermost slices have no clusters; their voxels are shown with cluster size 1 only.
        for (const int pixels : {0, 1, 4, 5}) {
            thresholds.ClusterSizePixels = pixels;
            EXPECT_EQ(voxelIsShown(maps, thresholds, 1, 3), shown && pixels < 5 ? 1u : 0u);
            EXPECT_EQ(voxelIsShown(maps, thresholds, 0, 3), shown && pixels < 2 ? 1u : 0u);
        }
    }
}
