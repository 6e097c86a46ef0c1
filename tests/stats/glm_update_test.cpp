// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include "stats/glm_run.h"

namespace {

/// Agreement relative to the exact value, or to `scale` for smaller ones.
void expectClose(double value, double exact, double scale) {
    EXPECT_NEAR(value, exact, 1e-4 * std::max(std::abs(exact), scale));
}

TEST(GLMUpdate, RecursionAndBatchAgreeWithLeastSquares) {
    constexpr int nrOfVolumes = 300;
    // The batch solution is in single precision on signals around 1000, so small betas are compared
    // relative to the effects in the run; their standard errors are above 1.
    constexpr double effectScale = 20.0;
    constexpr double tScale = 8.0; // where colours saturate
    const std::pair<std::vector<int>, int> steps[] = {
        {{11, 21, 150}, 150},                  // recursive after a late predictor
        {{nrOfVolumes - 1}, nrOfVolumes - 1}}; // one solution at the end
    for (const auto& [volumes, last] : steps) {
        GLMTestRun run(nrOfVolumes);
        run.addCondition(4, 12);
        run.addCondition(21, 9);
        run.addCondition(150, 11); // enters late
        run.addConfounds(2);
        run.addContrast({1, -1, 2});
        run.start(volumes);
        run.update(0, nrOfVolumes - 1);
        EXPECT_EQ(run.glm.GLMStartVolume, last);
        EXPECT_EQ(run.glm.ActivePredictors, (std::vector<int>{0, 1, 2, 3, 4}));
        ASSERT_GT(std::ranges::count(run.mask.voxels, 1), 80);
        for (size_t v = 0; v < run.voxels(); ++v) {
            if (run.mask.voxels[v] == 0)
                continue;
            SCOPED_TRACE(v);
            ExactFit exact(run, v, nrOfVolumes);
            exact.betas[3] += run.project.volumes[0][v]; // the constant
            for (size_t j = 0; j < 5; ++j)
                expectClose(run.glm.row(int(j))[v], exact.betas[j], effectScale);
            expectClose(run.glm.row(5)[v], exact.rss, 0.0);
            expectClose(double(run.maps.map(0)[v]), exact.t({1, -1, 2}), tScale);
        }
    }
}

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

} // namespace
