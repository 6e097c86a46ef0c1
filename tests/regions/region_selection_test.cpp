// Which voxels a drag selects.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "regions/region_selection.h"

#include <climits>
#include <gtest/gtest.h>

namespace {

using Voxels = std::vector<std::array<int, 3>>;

Voxels asTriples(const VoxelList& list) {
    Voxels voxels;
    for (size_t i = 0; i < list.size(); ++i)
        voxels.push_back({list.x[i], list.y[i], list.z[i]});
    return voxels;
}

TEST(RegionSelection, SlicesAroundTheChosenOne) {
    const std::array<int, 4> cases[] = {{3, 1, 3, 3},  {3, 2, 3, 4},       {3, 3, 2, 4},
                                        {3, 4, 2, 5},  {0, 3, 0, 1},       {7, 4, 6, 7},
                                        {3, 0, 3, 3},  {3, INT_MAX, 0, 7}, {8, 1, 0, -1},
                                        {-1, 2, 0, 0}, {INT_MAX, 3, 0, -1}};
    for (const auto& [slice, count, first, last] : cases) {
        const SliceRange range = selectedSlices(slice, count, 8);
        EXPECT_EQ(std::pair(range.first, range.last), std::pair(first, last)) << slice;
    }
}

// A volume of 5 x 4 x 3 with one contrast. The voxel (2, 1) of slice 1 lies in a cluster of 4, its
// right neighbour in one of 3; slice 2 has no cluster sizes.
struct Selection {
    StatisticalMaps contrasts;
    std::vector<float> firstPlugin = std::vector<float>(60);
    std::vector<float> secondPlugin = std::vector<float>(60);
    SelectionMaps maps{{5, 4, 3}, contrasts};

    Selection() {
        EXPECT_TRUE(contrasts.allocateMaps(1, maps.size));
        contrasts.NrOfActiveContrasts = 1;
        contrasts.ClusterSizeSlices = {std::vector<int>(20), std::vector<int>(20), {}};
        contrasts.ClusterSizeSlices[1][7] = 4;
        contrasts.ClusterSizeSlices[1][8] = 3;
        firstPlugin[20 + 6] = -3.0f;
        firstPlugin[20 + 7] = 2.9f;
        secondPlugin[40 + 13] = 5.0f;
    }
};

TEST(RegionSelection, TakesActiveVoxelsOrElseAll) {
    struct Case {
        const char* name;
        VoxelRectangle rectangle;
        Voxels expected;
        int nrOfSlices = 1;
        bool onlyMapVoxels = false;
        bool plugins = false;
    };
    const Voxels four = {{2, 1, 1}, {3, 1, 1}, {2, 2, 1}, {3, 2, 1}};
    const Case cases[] = {{"cluster", {1, 1, 4, 0, 3}, {{2, 1, 1}}, 3},
                          {"corners in any order", {1, 4, 1, 3, 0}, {{2, 1, 1}}},
                          {"the far ends are outside", {1, 0, 2, 0, 1}, {{0, 0, 1}, {1, 0, 1}}},
                          {"smaller clusters", {1, 3, 4, 1, 3}, {{3, 1, 1}, {3, 2, 1}}},
                          {"no cluster sizes", {2, 2, 3, 1, 3}, {{2, 1, 2}, {2, 2, 2}}},
                          {"plug-ins", {1, 0, 5, 0, 4}, {{1, 1, 1}, {3, 2, 2}}, 2, true, true},
                          {"plug-ins, not asked for", {1, 0, 5, 0, 4}, {{2, 1, 1}}, 2, false, true},
                          {"asked for, no plug-ins", {1, 0, 5, 0, 4}, {{2, 1, 1}}, 2, true, false},
                          {"nothing in plug-ins", {1, 2, 4, 1, 3}, four, 1, true, true},
                          {"zero width", {1, 2, 2, 0, 4}, {}},
                          {"zero height", {1, 0, 4, 3, 3}, {}},
                          {"a corner outside", {0, -5, 1, 3, 90}, {{0, 3, 0}}},
                          {"outside", {0, 5, 8, 0, 4}, {}},
                          {"other slice", {3, 0, 5, 0, 4}, {}},
                          {"far away", {INT_MIN, INT_MIN, INT_MAX, INT_MIN, INT_MIN}, {}}};
    for (const Case& test : cases) {
        Selection selection;
        if (test.plugins)
            selection.maps.pluginMaps = {selection.firstPlugin, selection.secondPlugin};
        EXPECT_EQ(asTriples(selectROIVoxels(selection.maps, test.onlyMapVoxels, test.nrOfSlices,
                                            test.rectangle)),
                  test.expected)
            << test.name;
    }
    Selection inactive, noMaps;
    inactive.contrasts.NrOfActiveContrasts = 0;
    noMaps.contrasts.ContrastMaps.release();
    for (const Selection* selection : {&inactive, &noMaps})
        EXPECT_EQ(asTriples(selectROIVoxels(selection->maps, false, 1, {1, 2, 4, 1, 3})), four);
}

} // namespace
