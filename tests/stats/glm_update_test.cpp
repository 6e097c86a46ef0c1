// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include "stats/conjunction.h"
#include "stats/glm_run.h"

#include <limits>

namespace {

TEST(GLMSchedule, OneSolutionForEachStepAndNoneAfterTheLast) {
    GLMTestRun run(60);
    run.addCondition(5, 8);
    run.addCondition(5, 6);
    run.addCondition(30, 8);
    run.addConfounds(1);
    run.start({11, 12, 30}); // equal onsets enter one after the other
    std::vector<int> solutions;
    for (int t = 0; t < 60; ++t) {
        const int before = run.glm.GLMStartVolume;
        updateGLM(run.parts(), t);
        if (run.glm.GLMStartVolume != before)
            solutions.push_back(t);
    }
    EXPECT_EQ(solutions, (std::vector<int>{11, 12, 30}));
    EXPECT_EQ(run.glm.nrOfActivePredictors, 4);
    EXPECT_EQ(run.maps.MapDF1, 60 - 4);

    GLMTestRun past(20); // predictors with a past onset enter together
    past.addCondition(11, 5);
    past.addCondition(5, 8);
    past.addConfounds(1);
    past.start({11, 12});
    past.update(0, 11);
    EXPECT_EQ(past.glm.ActivePredictors, (std::vector<int>{0, 1, 2}));
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
    run.contrasts.ContrastsChanged = true;
    for (const int volume : {27, 28}) { // the flag stays set
        EXPECT_TRUE(updateGLM(run.parts(), volume));
        EXPECT_EQ(run.maps.contrastOfMap, std::vector<int>{2});
    }
}

TEST(Conjunction, TakesTheWeakestOfOneSign) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const std::pair<std::vector<float>, float> cases[] = {
        {{}, 0},        {{3}, 3},          {{3, 2}, 2},        {{-2, -3}, -2}, {{-3, 2}, 0},
        {{4, 0, 5}, 0}, {{5, 4, 3, 6}, 3}, {{-5, -4, -6}, -4}, {{3, nan}, 0}};
    for (const auto& [values, result] : cases)
        EXPECT_EQ(conjunction(values), result);
}

TEST(BrainMask, HoldsInnerSlicesReadAsUnsigned) {
    GLMTestRun run(1);
    const struct {
        size_t voxel;
        int16_t sample;
        bool inside;
    } cases[] = {{3, 5000, false},
                 {4 * 42 + 3, 5000, false}, // first and last slice
                 {42, 100, false},
                 {43, 101, true}, // at the threshold and above
                 {44, -1, true}}; // 65535
    for (const auto& item : cases)
        run.project.volumes[0][item.voxel] = item.sample;
    ASSERT_TRUE(createBrainMask(run.mask, run.project));
    for (const auto& item : cases)
        EXPECT_EQ(run.mask.voxels[item.voxel] != 0, item.inside) << item.voxel;
    size_t inRuns = 0;
    for (const BrainMask::Run& item : run.mask.runs)
        for (size_t v = item.first; v < item.first + item.count; ++v, ++inRuns)
            EXPECT_NE(run.mask.voxels[v], 0) << v;
    EXPECT_EQ(inRuns, run.mask.nrOfVoxels);
    EXPECT_EQ(ptrdiff_t(inRuns), std::ranges::count_if(run.mask.voxels, [](auto v) { return v; }));
}

TEST(GLMUpdate, NoDegreesOfFreedomAndFiftyPredictors) {
    GLMTestRun run(60);
    for (int c = 0; c < 40; ++c)
        run.addCondition(c % 7, 3 + c % 5);
    run.addConfounds(10); // all but the first alike: the rank is low
    run.addContrast({1});
    run.start({11, 12});
    for (int t = 0; t < 60; ++t) {
        updateGLM(run.parts(), t);
        for (const float value : run.maps.ContrastMaps[0].span())
            ASSERT_TRUE(t >= 50 || value == 0.0f) << t;
    }
    EXPECT_EQ(run.maps.MapDF1, 10);
}

} // namespace
