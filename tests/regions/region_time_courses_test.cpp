// The mean signal of regions against sums taken voxel by voxel.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "regions/region_time_courses.h"

#include <gtest/gtest.h>
#include <numeric>

namespace {

/// Samples near the ends of their range, so that sums of 32 bits or of floats show.
FMRProject projectOf(const VolumeSize& size, int nrOfVolumes) {
    FMRProject project;
    project.ResolutionX = size.x;
    project.ResolutionY = size.y;
    project.NrOfSlices = size.slices;
    project.NrOfVolumes = nrOfVolumes;
    EXPECT_TRUE(project.allocateVolumes());
    for (size_t t = 0; t < project.volumes.size(); ++t)
        for (size_t v = 0; v < size.samples(); ++v)
            project.volumes[t][v] = int16_t(v % 7 == 3 ? -32000 : 32767 - v * 31 % (97 + t));
    return project;
}

/// Every voxel but the first two, last slice first.
VoxelList mostVoxels(const VolumeSize& size) {
    VoxelList voxels;
    for (int z = size.slices - 1; z >= 0; --z)
        for (int y = 0; y < size.y; ++y)
            for (int x = z == 0 && y == 0 ? 2 : 0; x < size.x; ++x)
                voxels.append(x, y, z);
    return voxels;
}

std::vector<int> firstPositions(size_t count) {
    std::vector<int> positions(count);
    std::iota(positions.begin(), positions.end(), 0);
    return positions;
}

/// Means of the voxels at these positions in the first volumes; 0 from there on.
std::vector<float> means(const FMRProject& project, const VoxelList& voxels,
                         std::span<const int> positions, size_t nrOfVolumes) {
    std::vector<float> values(project.volumes.size());
    for (size_t t = 0; t < nrOfVolumes; ++t) {
        int64_t sum = 0;
        for (const int position : positions) {
            const auto i = size_t(position);
            const int row = voxels.z[i] * project.ResolutionY + voxels.y[i];
            sum += project.volumes[t][size_t(row * project.ResolutionX + voxels.x[i])];
        }
        values[t] = float(double(sum) / double(positions.size()));
    }
    return values;
}

// A small region, whose samples are gathered, and one of a million voxels, which is too large.
class RegionTimeCourse : public testing::TestWithParam<VolumeSize> {
protected:
    FMRProject project = projectOf(GetParam(), 6);
    VoxelList voxels = mostVoxels(GetParam());
    Regions regions;
    RegionOptions options{.BestVoxelSelection = true, .TopVoxelRatio = 0.25f};

    RegionOfInterest& create(int nrOfVolumes) {
        return createROIFromVoxels(regions, project, nrOfVolumes, voxels, {2, 5, 1, 3, 7}, options);
    }
    void expectMeans(const RegionOfInterest& region, std::span<const int> positions, int volumes) {
        EXPECT_EQ(region.TimeCourseValues, means(project, voxels, positions, size_t(volumes)));
        EXPECT_EQ(region.CurrentTimePoint, volumes - 1);
    }
};

INSTANTIATE_TEST_SUITE_P(Sizes, RegionTimeCourse,
                         testing::Values(VolumeSize{8, 5, 3}, VolumeSize{128, 128, 64}),
                         [](const auto& test) { return test.param.x < 9 ? "Small" : "Large"; });

TEST_P(RegionTimeCourse, HasItsHistoryAtOnce) {
    options.TopVoxelSelectionMode = 3;
    const RegionOfInterest& region = create(4);
    expectMeans(region, firstPositions(voxels.size()), 4);
    EXPECT_EQ(region.NrOfValues(), 6);
    EXPECT_EQ(region.voxels, voxels);
    EXPECT_EQ((std::array{region.FromSlice, region.Left, region.Right, region.Top, region.Bottom}),
              (std::array{3, 6, 2, 4, 8}));
    EXPECT_EQ(region.TopVoxelRatio, 0.25f);
    EXPECT_EQ(region.TopVoxelSelectionMode, 3);
    EXPECT_EQ(&regions[0], &region);
}

TEST_P(RegionTimeCourse, FollowsTheBestVoxelsThroughItsWholeHistory) {
    RegionOfInterest& region = create(1);
    const size_t count = voxels.size();
    const std::vector<int> all = firstPositions(count);
    std::vector<int> ranking(all.rbegin(), all.rend());
    const auto update = [&](int volumes, bool best) {
        region.SortedVoxelList = ranking;
        updateTimeCourse(region, project, volumes, best);
    };
    // A quarter, rounded: 120 - 2 voxels give 29.5.
    const size_t quarter = size_t(std::lround(double(count) / 4));
    const auto expectBest = [&](int volumes) {
        update(volumes, true);
        expectMeans(region, std::span(ranking).first(quarter), volumes);
    };
    expectBest(2);
    std::swap(ranking[0], ranking[quarter]); // few voxels change
    std::swap(ranking[1], ranking[2]);
    expectBest(4);
    std::ranges::rotate(ranking, ranking.begin() + 40); // many do
    expectBest(4);
    update(6, false);
    expectMeans(region, all, 6);
    update(99, true); // more than there are
    expectMeans(region, std::span(ranking).first(quarter), 6);
    ranking.clear();
    update(6, true);
    expectMeans(region, all, 6);
}

// Only forget() makes it look again at volumes whose sums it has.
TEST_P(RegionTimeCourse, ReadsAVolumeOnceWhileItsVoxelsStay) {
    RegionOfInterest& region = create(1);
    region.SortedVoxelList = firstPositions(voxels.size());
    updateTimeCourse(region, project, 3, true);
    const std::vector<float> before = region.TimeCourseValues;
    std::ranges::fill(project.volumes[1], int16_t(5));
    std::swap(region.SortedVoxelList[0], region.SortedVoxelList[1]); // the same voxels
    updateTimeCourse(region, project, 4, true);
    EXPECT_EQ(region.TimeCourseValues[1], before[1]);
    EXPECT_NE(region.TimeCourseValues[3], 0.0f);
    region.samples.forget();
    updateTimeCourse(region, project, 4, true);
    EXPECT_EQ(region.TimeCourseValues[1], 5.0f);
}

TEST(VoxelsInUse, AreTheFirstOfTheSortedList) {
    struct Case {
        bool best;
        int voxels;
        float ratio;
        size_t listed;
        size_t used; ///< 0 for all
    };
    const Case cases[] = {{true, 10, 0.34f, 10, 3}, {true, 10, 0.35f, 10, 4},
                          {true, 10, 0.04f, 10, 1}, {true, 10, 0.0f, 10, 1},
                          {true, 2, 0.5f, 2, 1},    {true, 10, 0.5f, 3, 3},
                          {true, 10, 1.0f, 10, 0},  {true, 1, 0.5f, 1, 0},
                          {true, 10, 0.5f, 0, 0},   {false, 10, 0.5f, 10, 0}};
    for (const Case& test : cases) {
        RegionOfInterest region;
        for (int x = 0; x < test.voxels; ++x)
            region.voxels.append(x, 0, 0);
        region.TopVoxelRatio = test.ratio;
        region.SortedVoxelList = firstPositions(test.listed);
        const std::span<const int> used = voxelsInUse(region, test.best);
        EXPECT_EQ(used.size(), test.used) << test.voxels << " voxels, ratio " << test.ratio;
        EXPECT_TRUE(std::ranges::equal(used, firstPositions(test.used)));
    }
}

} // namespace
