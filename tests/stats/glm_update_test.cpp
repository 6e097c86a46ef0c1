// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include "stats/glm_run.h"
#include "support/scripted_messages.h"

TEST(GLMContrasts, AppearAtTheSolutionAfterTheirOnset) {
    GLMTestRun run(40);
    run.addCondition(25, 8);
    run.addCondition(5, 8);
    run.addConfounds(1);
    run.addContrast({1, 0}, ContrastBoth);
    run.addContrast({0, 1}, ContrastNegative);
    run.addContrast({1, -1}, ContrastOff);
    run.start({11, 25});
    run.update(0, 10);
    EXPECT_TRUE(updateGLM(run.parts(), 11));
    EXPECT_FALSE(updateGLM(run.parts(), 12));
    EXPECT_EQ(run.contrasts.ActiveContrastStates, (std::vector<int>{0, 2, 0}));
    EXPECT_EQ(run.maps.NrOfActiveContrasts, 1);
    EXPECT_EQ(run.maps.contrastOfMap, std::vector<int>{1});
    run.update(13, 24);
    EXPECT_TRUE(updateGLM(run.parts(), 25));
    EXPECT_EQ(run.maps.states, (std::vector<int>{ContrastBoth, ContrastNegative}));

    run.contrasts.ContrastSelectionStates = {0, 0, 1};
    EXPECT_FALSE(updateGLM(run.parts(), 26));
    EXPECT_EQ(run.maps.contrastOfMap, (std::vector<int>{0, 1}));
    const auto isZero = [](float value) { return value == 0.0f; };
    EXPECT_FALSE(std::ranges::all_of(run.maps.map(1), isZero));
    run.contrasts.ContrastsChanged = true;
    for (const int volume : {27, 28}) { // the flag stays set
        EXPECT_TRUE(updateGLM(run.parts(), volume));
        EXPECT_EQ(run.maps.contrastOfMap, std::vector<int>{2});
        EXPECT_TRUE(std::ranges::all_of(run.maps.map(1), isZero)) << "out of use";
    }
}

TEST(BrainMask, HoldsInnerSlicesReadAsUnsigned) {
    GLMTestRun run(1);
    // In the outer slices, at the threshold, above it; -1 is 65535.
    const std::tuple<size_t, int16_t, bool> cases[] = {{3, 5000, false},
                                                       {4 * 42 + 3, 5000, false},
                                                       {42, 100, false},
                                                       {43, 101, true},
                                                       {44, -1, true}};
    for (const auto& [voxel, sample, inside] : cases)
        run.project.volumes[0][voxel] = sample;
    ASSERT_TRUE(createBrainMask(run.mask, run.project, 100));
    for (const auto& [voxel, sample, inside] : cases)
        EXPECT_EQ(run.mask.voxels[voxel] != 0, inside) << voxel;
    // Kernels need the voxels in runs, each between two voxels outside the mask.
    ASSERT_GE(run.mask.runs.size(), 2u);
    EXPECT_EQ(run.mask.runs[0].first, 43u);
    EXPECT_EQ(run.mask.runs[0].count, 4u); // 47 is one of the dark voxels
    EXPECT_EQ(run.mask.runs[1].first, 48u);
}

TEST(GLMUpdate, NoDegreesOfFreedomAndFiftyPredictors) {
    GLMTestRun run(60);
    for (int c = 0; c < 40; ++c)
        run.addCondition(c % 7, 3 + c % 5);
    run.addConfounds(10); // all but the first are equal, and so are some conditions
    run.addContrast({1});
    run.start({11, 12});
    for (int t = 0; t < 60; ++t) {
        updateGLM(run.parts(), t);
        const bool free = t + 1 > run.glm.nrOfDirections;
        ASSERT_EQ(run.maps.MapDF1, t < 11 ? 0 : t + 1 - run.glm.nrOfDirections);
        for (const float value : run.maps.map(0))
            ASSERT_TRUE(free || value == 0.0f) << t;
    }
    EXPECT_EQ(run.glm.nrOfDirections, 15); // singular values of NumPy above 1e-5
}
