// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include "stats/conjunction.h"
#include "stats/glm_run.h"

#include <array>
#include <limits>

namespace {

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
}

TEST(GLMSchedule, PredictorsWithPastOnsetEnterTogether) {
    GLMTestRun run(20);
    run.addCondition(11, 5);
    run.addCondition(5, 8);
    run.addConfounds(1);
    run.start({11, 12});
    run.update(0, 11);
    EXPECT_EQ(run.glm.ActivePredictors, (std::vector<int>{0, 1, 2}));
}

TEST(GLMSchedule, WithoutStepsNothingIsFitted) {
    GLMTestRun run(20);
    run.addCondition(5, 8);
    run.addConfounds(1);
    run.addContrast({1});
    run.start({-1});
    EXPECT_TRUE(solutionVolumes(run, 19).empty());
    EXPECT_EQ(run.glm.nrOfActivePredictors, 1);
    EXPECT_TRUE(std::ranges::all_of(run.glm.values.span(), [](double v) { return v == 0.0; }));
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

TEST(GLMContrasts, ConjunctionReplacesTheFirstMap) {
    GLMTestRun plain(30);
    plain.addCondition(4, 8);
    plain.addCondition(5, 14);
    plain.addConfounds(1);
    plain.addContrast({1, 0});
    plain.addContrast({0, 1}, ContrastNegative);
    plain.start({11, 12});
    plain.update(0, 20);
    const std::vector<float> first(plain.maps.ContrastMaps[0].data(),
                                   plain.maps.ContrastMaps[0].data() + plain.voxels());
    plain.update(12, 11); // nothing
    GLMTestRun both(30);
    both.addCondition(4, 8);
    both.addCondition(5, 14);
    both.addConfounds(1);
    both.addContrast({1, 0});
    both.addContrast({0, 1}, ContrastNegative);
    both.contrasts.ConjunctionAnalysis = true;
    both.start({11, 12});
    both.update(0, 20);
    EXPECT_EQ(both.maps.states, (std::vector<int>{ContrastBoth, ContrastNegative}));
    size_t nrOfZeros = 0;
    for (size_t v = 0; v < first.size(); ++v) {
        const std::array values{first[v], plain.maps.ContrastMaps[1][v]};
        EXPECT_EQ(both.maps.ContrastMaps[0][v], conjunction(values)) << v;
        nrOfZeros += both.mask.voxels[v] && conjunction(values) == 0.0f;
    }
    EXPECT_GT(nrOfZeros, 0u);
    EXPECT_LT(nrOfZeros, both.mask.nrOfVoxels);
}

TEST(Conjunction, Table) {
    const struct {
        std::vector<float> values;
        float result;
    } cases[] = {{{}, 0},
                 {{3}, 3},
                 {{3, 2}, 2},
                 {{2, 3}, 2},
                 {{-3, -2}, -2},
                 {{-2, -3}, -2},
                 {{3, -2}, 0},
                 {{-3, 2}, 0},
                 {{0, 4, 5}, 0},
                 {{4, 0, 5}, 0},
                 {{4, -1, -5}, 0},
                 {{5, 4, 3, 6}, 3},
                 {{-5, -4, -6}, -4},
                 {{3, std::numeric_limits<float>::quiet_NaN()}, 0}};
    for (const auto& item : cases)
        EXPECT_EQ(conjunction(item.values), item.result);
}

TEST(BrainMask, InnerSlicesReadAsUnsigned) {
    GLMTestRun run(1);
    run.project.volumes[0][3] = 5000;          // first slice
    run.project.volumes[0][4 * 42 + 3] = 5000; // last slice
    run.project.volumes[0][42] = 100;          // at the threshold
    run.project.volumes[0][43] = 101;
    run.project.volumes[0][44] = -1; // 65535
    ASSERT_TRUE(createBrainMask(run.mask, run.project));
    EXPECT_EQ(run.mask.voxels[3], 0);
    EXPECT_EQ(run.mask.voxels[4 * 42 + 3], 0);
    EXPECT_EQ(run.mask.voxels[42], 0);
    EXPECT_NE(run.mask.voxels[43], 0);
    EXPECT_NE(run.mask.voxels[44], 0);
    size_t inRuns = 0;
    for (const BrainMask::Run& item : run.mask.runs)
        for (size_t v = item.first; v < item.first + item.count; ++v, ++inRuns)
            EXPECT_NE(run.mask.voxels[v], 0) << v;
    EXPECT_EQ(inRuns, run.mask.nrOfVoxels);
    EXPECT_EQ(ptrdiff_t(inRuns), std::ranges::count_if(run.mask.voxels, [](auto v) { return v; }));
}

TEST(BrainMask, EmptyForFewerThanThreeSlices) {
    GLMTestRun run(30, 2);
    run.addCondition(5, 8);
    run.addConfounds(1);
    run.addContrast({1});
    run.start({11});
    EXPECT_EQ(run.mask.nrOfVoxels, 0u);
    EXPECT_EQ(run.mask.voxels.size(), run.voxels());
    run.update(0, 29);
    EXPECT_EQ(run.glm.GLMStartVolume, 11);
}

TEST(GLMUpdate, FlatAndNegativeVoxels) {
    GLMTestRun run(40);
    run.addCondition(5, 8);
    run.addConfounds(1);
    run.addContrast({1});
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
    GLMTestRun run(30);
    run.addCondition(5, 8);
    run.addConfounds(1);
    run.addContrast({1});
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
