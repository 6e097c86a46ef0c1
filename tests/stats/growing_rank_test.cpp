// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include "stats/design_rank.h"
#include "stats/glm_run.h"

namespace {

void expectExactFit(const GLMTestRun& run, int n) {
    for (size_t v = 42; v < 168; v += 17) {
        if (run.mask.voxels[v] == 0 || run.maps.NrOfActiveContrasts == 0)
            continue;
        const ExactFit exact(run, v, n);
        ASSERT_EQ(run.maps.MapDF1, n - exact.rank) << n;
        const double t = exact.t({1});
        ASSERT_NEAR(run.maps.map(0)[v], t, 1e-3 * std::max(1.0, std::abs(t))) << n;
    }
}

GLMTestRun driftingRun(int nrOfVolumes, int conditions, int driftTerms) {
    GLMTestRun run(nrOfVolumes);
    for (int c = 0; c < conditions; ++c)
        run.addCondition(4 + 9 * c, 8);
    run.addDriftTerms(driftTerms);
    run.addContrast({1});
    std::vector<int> steps;
    for (int c = 0; c < conditions; ++c)
        steps.push_back(std::max(11 + c, 4 + 9 * c));
    run.start(steps);
    return run;
}

TEST(GrowingRank, EveryDesignGivesTheLeastSquaresOfItsDirections) {
    const std::tuple<int, int, int> cases[] = {{100, 1, 0},  {100, 4, 2},  {300, 1, 1},
                                               {300, 1, 3},  {300, 2, 10}, {300, 4, 5},
                                               {3000, 2, 2}, {60, 2, 47}};
    for (const auto& [volumes, conditions, drift] : cases) {
        GLMTestRun run = driftingRun(volumes, conditions, drift);
        for (int t = 0; t < volumes; ++t) {
            updateGLM(run.parts(), t);
            if (t % (volumes / 12) == volumes / 12 - 1)
                expectExactFit(run, t + 1);
        }
        EXPECT_FALSE(run.glm.growth.open);
        EXPECT_TRUE(run.glm.growth.sums.empty() && run.glm.growth.xx.empty());
    }
}

TEST(GrowingRank, WithoutMemoryForSumsTheVolumesGiveEachDirection) {
    GLMTestRun run = driftingRun(300, 1, 3);
    run.update(0, 11);
    ASSERT_TRUE(run.glm.growth.open);
    run.glm.growth.sums.release();
    int directions = run.glm.nrOfDirections;
    for (int t = 12; t < 300; ++t) {
        updateGLM(run.parts(), t);
        if (std::exchange(directions, run.glm.nrOfDirections) < run.glm.nrOfDirections)
            expectExactFit(run, t + 1);
        run.glm.growth.sums.release();
    }
    EXPECT_EQ(directions, 5);
    expectExactFit(run, 300);
}

/// Two conditions that add up to the constant.
TEST(GrowingRank, WhatCanNotBeEstimatedHasNoMapAndIsNamed) {
    GLMTestRun run(80);
    run.addCondition(0, 12);
    run.addCondition(0, 12);
    for (size_t t = 0; t < 80; ++t)
        run.design.PredictorColumns[1][t] = 1.0f - run.design.PredictorColumns[0][t];
    run.addConfounds(2);
    run.design.PredictorNames = QStringList{"A", "B", "Constant", "Linear Trend"};
    run.addContrast({1, 0});
    run.addContrast({1, -1});
    run.start({11});
    run.update(0, 79);
    for (size_t v = 42; v < 168; ++v) {
        if (run.mask.voxels[v] == 0)
            continue;
        EXPECT_EQ(run.maps.map(0)[v], 0.0f);
        const double t = ExactFit(run, v, 80).t({1, -1});
        EXPECT_NEAR(run.maps.map(1)[v], t, 1e-3 * std::max(1.0, std::abs(t)));
    }
    EXPECT_EQ(predictorsThatDependOnOthers(run.design, 80), (QStringList{"A", "B", "Constant"}));
    run.design.PredictorColumns[1][70] += 0.5f;
    EXPECT_EQ(predictorsThatDependOnOthers(run.design, 80), QStringList());
}

} // namespace
