// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include "stats/conjunction.h"
#include "stats/finished_model.h"
#include "stats/glm_run.h"

#include <array>
#include <limits>

namespace {

GLMTestRun oneCondition(int nrOfVolumes, int nrOfSlices = 5) {
    GLMTestRun run(nrOfVolumes, nrOfSlices);
    run.addCondition(5, 8);
    run.addConfounds(1);
    run.addContrast({1});
    return run;
}

std::vector<int> solutionVolumes(GLMTestRun& run, int last) {
    std::vector<int> volumes;
    for (int t = 0; t <= last; ++t) {
        const int before = run.glm.GLMStartVolume;
        updateGLM(run.parts(), t);
        if (run.glm.GLMStartVolume != before)
            volumes.push_back(t);
    }
    return volumes;
}

TEST(GLMSchedule, OneSolutionForEachStepAndNoneAfterTheLast) {
    GLMTestRun run(60);
    run.addCondition(5, 8);
    run.addCondition(5, 6);
    run.addCondition(30, 8);
    run.addConfounds(1);
    run.start({11, 12, 30}); // equal onsets enter one after the other
    EXPECT_EQ(solutionVolumes(run, 59), (std::vector<int>{11, 12, 30}));
    EXPECT_EQ(run.glm.GLMStepIndex, 2);
    EXPECT_EQ(run.glm.nrOfActivePredictors, 4);
    EXPECT_EQ(run.maps.MapDF1, 60 - 4);
    EXPECT_EQ(run.maps.MapType, MapKind::T);

    GLMTestRun past(20); // predictors with a past onset enter together
    past.addCondition(11, 5);
    past.addCondition(5, 8);
    past.addConfounds(1);
    past.start({11, 12});
    past.update(0, 11);
    EXPECT_EQ(past.glm.ActivePredictors, (std::vector<int>{0, 1, 2}));
}

TEST(GLMSchedule, WithoutStepsNothingIsFitted) {
    GLMTestRun run = oneCondition(20);
    run.start({-1});
    EXPECT_TRUE(solutionVolumes(run, 19).empty());
    EXPECT_EQ(run.glm.nrOfActivePredictors, 1);
    EXPECT_TRUE(std::ranges::all_of(run.glm.values.span(), [](double v) { return v == 0.0; }));
    FinishedModel model;
    EXPECT_FALSE(finishModel(model, run.glm, run.project, run.mask, 20));
    EXPECT_FALSE(computeContrastMaps(model, run.mask, run.contrasts, run.maps));
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
        {{}, 0},          {{3}, 3},          {{3, 2}, 2},        {{2, 3}, 2},    {{-3, -2}, -2},
        {{-2, -3}, -2},   {{3, -2}, 0},      {{-3, 2}, 0},       {{0, 4, 5}, 0}, {{4, 0, 5}, 0},
        {{4, -1, -5}, 0}, {{5, 4, 3, 6}, 3}, {{-5, -4, -6}, -4}, {{3, nan}, 0}};
    for (const auto& [values, result] : cases)
        EXPECT_EQ(conjunction(values), result);
    // In a run it replaces the first map.
    GLMTestRun runs[] = {GLMTestRun(30), GLMTestRun(30)};
    for (GLMTestRun& run : runs) {
        run.addCondition(4, 8);
        run.addCondition(5, 14);
        run.addConfounds(1);
        run.addContrast({1, 0});
        run.addContrast({0, 1}, ContrastNegative);
        run.contrasts.ConjunctionAnalysis = &run == &runs[1];
        run.start({11, 12});
        run.update(0, 20);
    }
    EXPECT_EQ(runs[1].maps.states, (std::vector<int>{ContrastBoth, ContrastNegative}));
    size_t nrOfZeros = 0;
    for (size_t v = 0; v < runs[0].voxels(); ++v) {
        const std::array values{runs[0].maps.ContrastMaps[0][v], runs[0].maps.ContrastMaps[1][v]};
        EXPECT_EQ(runs[1].maps.ContrastMaps[0][v], conjunction(values)) << v;
        nrOfZeros += runs[0].mask.voxels[v] && conjunction(values) == 0.0f;
    }
    EXPECT_GT(nrOfZeros, 0u);
    EXPECT_LT(nrOfZeros, runs[0].mask.nrOfVoxels);
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

    GLMTestRun flat = oneCondition(30, 2); // fewer than three slices have no inner one
    flat.start({11});
    EXPECT_EQ(flat.mask.nrOfVoxels, 0u);
    EXPECT_EQ(flat.mask.voxels.size(), flat.voxels());
    flat.update(0, 29);
    EXPECT_EQ(flat.glm.GLMStartVolume, 11);
}

TEST(GLMUpdate, FlatAndNegativeVoxels) {
    GLMTestRun run = oneCondition(40);
    run.addContrast({0}); // no weights: no variance either
    for (size_t t = 0; t < 40; ++t) {
        run.project.volumes[t][50] = 700;
        run.project.volumes[t][51] = int16_t(-20000 + int(t % 2) * 4);
    }
    run.start({11});
    run.update(0, 39);
    EXPECT_EQ(run.maps.ContrastMaps[0][50], 0.0f);
    EXPECT_NEAR(run.glm.row(1)[50], 700.0, 0.01);
    EXPECT_NEAR(run.glm.row(1)[51], -19998.0, 1.5);
    EXPECT_NE(run.maps.ContrastMaps[0][51], 0.0f);
    EXPECT_TRUE(
        std::ranges::all_of(run.maps.ContrastMaps[1].span(), [](float t) { return t == 0.0f; }));
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
    EXPECT_EQ(run.glm.nrOfActivePredictors, 50);
    EXPECT_EQ(run.maps.MapDF1, 10);
}

TEST(GLMUpdate, WhatDoesNotFitIsLeftAlone) {
    GLMTestRun run = oneCondition(30);
    run.start({11});
    run.update(0, 15);
    EXPECT_FALSE(updateGLM(run.parts(), 30));
    EXPECT_FALSE(updateGLM(run.parts(), -1));
    ASSERT_TRUE(run.project.volumes[16].allocate(7));
    EXPECT_FALSE(updateGLM(run.parts(), 16));
    run.design.PredictorColumns[0].resize(10); // read as 0 from there on
    run.maps.ContrastMaps[0].release();
    run.mask.voxels.resize(3);
    EXPECT_FALSE(updateGLM(run.parts(), 17));
    GLMState none;
    EXPECT_FALSE(updateGLM({run.project, run.design, run.contrasts, run.mask, none, run.maps}, 11));
}

} // namespace
