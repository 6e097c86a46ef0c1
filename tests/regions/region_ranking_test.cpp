// The best voxels. Expected orders are from NumPy (argsort, stable, reversed).
// SPDX-License-Identifier: GPL-3.0-or-later
#include "regions/region_ranking.h"

#include <gtest/gtest.h>

namespace {

// Ten voxels along x, behind one that no region has. The design has three conditions and two
// confounds; the second condition is not in the model yet.
struct RankedRun {
    DesignMatrix design;
    GLMState glm;
    Regions regions;
    VolumeSize size{11, 1, 1};

    RankedRun() {
        design.NrOfConditionPredictors = 3;
        design.NrOfConfoundPredictors = 2;
        design.NrOfPredictors = 5;
        EXPECT_TRUE(glm.allocate(5, size.samples()));
        glm.nrOfActivePredictors = 4;
        glm.ActivePredictors = {0, 2, 3, 4};
        setRow(0, {12, -40, 0, 7, 25, 7, -3, 30, 18, 0});
        setRow(1, {-9, 33, 0, 7, -25, 7, -2, -10, 60, 0});
        setRow(2, {900, 800, 0, 1000, 0, 1000, -500, 1200, 1500, 70});
        setRow(3, {5, 4, 3, 2, 1, 9, 8, 7, 6, 0});
    }
    void setRow(int row, const std::vector<double>& betas) {
        std::copy(betas.begin(), betas.end(), glm.row(row).begin() + 1);
    }
    RegionOfInterest& add(float ratio, int mode, int nrOfVoxels = 10) {
        RegionOfInterest region;
        for (int x = 1; x <= nrOfVoxels; ++x)
            region.voxels.append(x, 0, 0);
        region.TopVoxelRatio = ratio;
        region.TopVoxelSelectionMode = mode;
        region.SortedVoxelList = {7};
        return regions.add(std::move(region));
    }
    void rank() { rankROIVoxels(regions, glm, design, size); }
};

using Order = std::vector<int>;

TEST(RegionRanking, AgreesWithAnIndependentOne) {
    RankedRun run;
    const std::pair<RegionOfInterest*, Order> cases[] = {
        {&run.add(0.5f, allPredictors), {4, 1, 8, 7, 0, 5, 3, 9, 2, 6}},
        {&run.add(0.5f, 0), {4, 7, 0, 8, 5, 3, 6, 9, 2, 1}},
        {&run.add(0.0f, 2), {1, 8, 5, 3, 6, 9, 2, 7, 0, 4}},
        {&run.add(0.5f, 0, 2), {0, 1}},
        {&run.add(0.5f, 1), {}}, // not in the model
        {&run.add(0.5f, 3), {}}, // the constant
        {&run.add(0.5f, -2), {}},
        {&run.add(1.0f, allPredictors), {}},
        {&run.add(0.5f, allPredictors, 1), {}}};
    run.rank();
    for (const auto& [region, expected] : cases)
        EXPECT_EQ(region->SortedVoxelList, expected)
            << region->TopVoxelSelectionMode << ' ' << region->TopVoxelRatio;
}

TEST(RegionRanking, NothingHappensWithoutAConditionOrWithAModelOfAnotherSize) {
    RankedRun confoundsOnly, unfitted, noModel, otherSize;
    confoundsOnly.glm.ActivePredictors = {3, 4};
    unfitted.glm.ActivePredictors.clear();
    noModel.glm.release();
    otherSize.size.y = 2;
    for (RankedRun* run : {&confoundsOnly, &unfitted, &noModel, &otherSize}) {
        const RegionOfInterest& region = run->add(0.5f, allPredictors);
        run->rank();
        EXPECT_EQ(region.SortedVoxelList, Order{7});
    }
}

} // namespace
