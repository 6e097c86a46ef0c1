// The cluster filter against a plain form of its rules, and what it lets through.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/clusters.h"

#include <gtest/gtest.h>
#include <limits>
#include <map>
#include <random>
#include <set>

namespace {

/// One map, all voxels 0, in use with `state`.
StatisticalMaps oneMap(int sizeX, int sizeY, int nrOfSlices, int state = 1) {
    StatisticalMaps maps;
    maps.sizeX = sizeX;
    maps.sizeY = sizeY;
    maps.nrOfSlices = nrOfSlices;
    EXPECT_TRUE(maps.allocateMaps(1));
    maps.NrOfActiveContrasts = 1;
    maps.states = {state};
    maps.contrastOfMap = {0};
    return maps;
}

/// The rules word by word: one walk through the links for each pixel.
class PlainClusters {
public:
    std::vector<int> sizes(const std::vector<bool>& passing, int sizeX) {
        std::vector<int> labels(passing.size(), 0);
        for (int i = 0; i < int(passing.size()); ++i)
            if (passing[size_t(i)])
                labels[size_t(i)] = label(labels, i % sizeX, i / sizeX, sizeX);
        std::map<int, int> counts;
        for (int& value : labels)
            if (value > 0)
                ++counts[value = finalLabel(value)];
        for (int& value : labels)
            value = value > 0 ? counts[value] : 0;
        return labels;
    }
    int nrOfLoops = 0;

private:
    int label(const std::vector<int>& labels, int x, int y, int sizeX) {
        const int neighbours[4][2] = {{x - 1, y}, {x - 1, y - 1}, {x, y - 1}, {x + 1, y - 1}};
        int result = 0;
        for (const auto& [nx, ny] : neighbours) {
            if (nx < 0 || nx >= sizeX || ny < 0)
                continue;
            const int other = labels[size_t(ny * sizeX + nx)];
            if (other > 0 && result > 0 && other != result)
                links_.emplace(other, result);
            else if (other > 0)
                result = other;
        }
        return result > 0 ? result : ++lastLabel_;
    }
    int finalLabel(int start) {
        std::vector<int> way{start};
        while (links_.contains(way.back())) {
            const int next = links_[way.back()];
            const auto seen = std::find(way.begin(), way.end(), next);
            if (seen != way.end()) {
                ++nrOfLoops;
                return *std::min_element(seen, way.end());
            }
            way.push_back(next);
        }
        return way.back();
    }
    std::map<int, int> links_;
    int lastLabel_ = 0;
};

void expectPlainSizes(StatisticalMaps& maps, int slice, int& nrOfLoops) {
    const auto values =
        maps.ContrastMaps[0].span().subspan(size_t(slice) * maps.sliceVoxels(), maps.sliceVoxels());
    std::vector<bool> passing;
    for (const float value : values)
        passing.push_back(value >= maps.Threshold);
    PlainClusters plain;
    EXPECT_EQ(maps.ClusterSizeSlices[size_t(slice)], plain.sizes(passing, maps.sizeX));
    nrOfLoops += plain.nrOfLoops;
}

TEST(Clusters, AgreeWithThePlainRulesOnNoise) {
    std::mt19937 random(7);
    int nrOfLoops = 0;
    for (const double density : {0.05, 0.2, 0.35, 0.5, 0.7, 0.95}) {
        StatisticalMaps maps = oneMap(67, 41, 6);
        std::bernoulli_distribution passes(density);
        for (float& value : maps.ContrastMaps[0].span())
            value = passes(random) ? 3.5f : 2.5f;
        computeClusterSizes(maps, false);
        for (int slice = 1; slice < 5; ++slice)
            expectPlainSizes(maps, slice, nrOfLoops);
        EXPECT_EQ(maps.ClusterSizeSlices[0], std::vector<int>(67 * 41, 0));
        EXPECT_EQ(maps.ClusterSizeSlices[5], std::vector<int>(67 * 41, 0));
    }
    EXPECT_GT(nrOfLoops, 0) << "the noise must reach the rule for loops";
}

TEST(Clusters, ShapesHaveTheSizesThatTheRulesGive) {
    struct Case {
        const char* name;
        std::vector<std::string> rows;
        std::set<int> sizes;
    };
    const Case cases[] = {
        {"U: arms joined at the bottom", {"#...#", "#...#", "#####"}, {0, 9}},
        {"V, joined by corners", {"#...#", ".#.#.", "..#.."}, {0, 5}},
        {"three arms", {"#.#.#", "#.#.#", "#####"}, {0, 11}},
        {"apart by one pixel", {"##..#", "##..#", "....#"}, {0, 3, 4}},
        {"edges of a row don't touch", {"#...", "...#", "#..."}, {0, 1}},
        {"spiral", {"#######", "#.....#", "#.###.#", "#.#...#", "#.#####"}, {0, 23}},
        // The middle piece is linked to the first already, so its touch with the last is not noted.
        {"second equivalence", {"#.#......", ".#.#####.", "........#", ".....###."}, {0, 3, 9}},
    };
    for (const Case& item : cases) {
        const int sizeX = int(item.rows[0].size());
        StatisticalMaps maps = oneMap(sizeX, int(item.rows.size()), 3);
        for (size_t i = 0; i < maps.sliceVoxels(); ++i)
            if (item.rows[i / size_t(sizeX)][i % size_t(sizeX)] == '#')
                maps.ContrastMaps[0][maps.sliceVoxels() + i] = maps.Threshold; // just reaches it
        computeClusterSizes(maps, false);
        const std::vector<int>& sizes = maps.ClusterSizeSlices[1];
        EXPECT_EQ(std::set<int>(sizes.begin(), sizes.end()), item.sizes) << item.name;
    }
}

TEST(Clusters, MoreThanTenThousandLabelsInOneSlice) {
    StatisticalMaps maps = oneMap(220, 220, 3);
    for (size_t i = 0; i < maps.sliceVoxels(); ++i)
        maps.ContrastMaps[0][maps.sliceVoxels() + i] = (i % 220) % 2 + (i / 220) % 2 ? 0.0f : 9.0f;
    computeClusterSizes(maps, false);
    EXPECT_EQ(std::count(maps.ClusterSizeSlices[1].begin(), maps.ClusterSizeSlices[1].end(), 1),
              110 * 110);
}

TEST(Clusters, SelectionStatesDecideOnTheSign) {
    struct Case {
        int state;
        float value;
        bool shown;
    };
    const Case cases[] = {{1, 5.0f, true},
                          {1, -5.0f, false},
                          {2, 5.0f, false},
                          {2, -5.0f, true},
                          {3, -3.0f, true},
                          {3, 2.99f, false},
                          {3, std::numeric_limits<float>::quiet_NaN(), false}};
    for (const Case& item : cases) {
        StatisticalMaps maps = oneMap(2, 2, 3, item.state);
        for (float& value : maps.ContrastMaps[0].span())
            value = item.value;
        computeClusterSizes(maps, false);
        EXPECT_EQ(maps.ClusterSizeSlices[1][0], item.shown ? 4 : 0);
        EXPECT_EQ(voxelIsShown(maps, 1, 3), item.shown ? 1u : 0u);
    }
}

TEST(Clusters, OuterSlicesAreShownOnlyWithClusterSizeOne) {
    StatisticalMaps maps = oneMap(3, 3, 4);
    for (float& value : maps.ContrastMaps[0].span())
        value = 4.0f;
    maps.ClusterSizePixels = 1;
    EXPECT_EQ(voxelIsShown(maps, 0, 0), 0u) << "no map is shown yet";
    computeClusterSizes(maps, false);
    EXPECT_EQ(voxelIsShown(maps, 0, 4), 1u);
    maps.ClusterSizePixels = 2;
    EXPECT_EQ(voxelIsShown(maps, 3, 4), 0u);
    EXPECT_EQ(voxelIsShown(maps, 2, 4), 1u);
    maps.ClusterSizePixels = 10;
    EXPECT_EQ(voxelIsShown(maps, 2, 4), 0u);
}

TEST(Clusters, CountsAndClampsBeforeItFilters) {
    StatisticalMaps maps = oneMap(3, 3, 3);
    ASSERT_TRUE(maps.allocateMaps(6));
    maps.NrOfActiveContrasts = 5;
    maps.states = {1, 1, 2, 1, 1};
    maps.Threshold = -1.0f;
    maps.ColorMaxThreshold = -2.0f;
    computeClusterSizes(maps, false);
    EXPECT_EQ(maps.NrOfShownMaps, 4);
    EXPECT_EQ(maps.Threshold, 0.0f);
    EXPECT_EQ(maps.ColorMaxThreshold, 0.0f);
    EXPECT_EQ(maps.ClusterSizeSlices[1][8], 9) << "threshold 0 is reached by every pixel";

    maps.Threshold = 3.0f;
    maps.ContrastMaps[1][9] = 4.0f;
    maps.ContrastMaps[2][9] = -4.0f;
    maps.ContrastMaps[4][9] = 4.0f;
    maps.ClusterSizePixels = 1;
    EXPECT_EQ(voxelIsShown(maps, 1, 0), 0b0110u) << "the fifth map is not shown";

    computeClusterSizes(maps, true);
    EXPECT_EQ(maps.NrOfShownMaps, 1);
    maps.NrOfActiveContrasts = 0;
    computeClusterSizes(maps, false);
    EXPECT_EQ(maps.NrOfShownMaps, 0);
}

TEST(Maps, ImpossibleSizesAreRefused) {
    StatisticalMaps maps;
    maps.sizeX = maps.sizeY = maps.nrOfSlices = 1 << 20;
    EXPECT_FALSE(maps.allocateMaps(3));
    EXPECT_TRUE(maps.ContrastMaps.empty());
}

} // namespace
