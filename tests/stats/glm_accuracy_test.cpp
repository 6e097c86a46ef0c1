// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include "stats/glm_run.h"

namespace {

constexpr int nrOfVolumes = 300;
constexpr double bound = 1e-4;

/// The batch solution is in single precision on signals around 1000, so small betas are compared
/// relative to the effects in the run; their standard errors are above 1.
constexpr double effectScale = 20.0;
constexpr double tScale = 8.0; // where colours saturate

/// Agreement relative to the exact value, or to `scale` for smaller ones.
void expectClose(double value, double exact, double scale, const char* what, size_t voxel) {
    EXPECT_NEAR(value, exact, bound * std::max(std::abs(exact), scale)) << what << " " << voxel;
}

GLMTestRun threeConditions() {
    GLMTestRun run(nrOfVolumes);
    run.addCondition(4, 12);
    run.addCondition(21, 9);
    run.addCondition(150, 11); // enters late
    run.addConfounds(2);
    run.addContrast({1, -1, 2});
    return run;
}

TEST(GLMAccuracy, RecursionAndBatchAgreeWithLeastSquares) {
    const std::pair<std::vector<int>, int> steps[] = {
        {{11, 21, 150}, 150},                  // recursive after a late predictor
        {{nrOfVolumes - 1}, nrOfVolumes - 1}}; // one solution at the end
    for (const auto& [volumes, last] : steps) {
        GLMTestRun run = threeConditions();
        run.start(volumes);
        run.update(0, nrOfVolumes - 1);
        EXPECT_EQ(run.glm.GLMStartVolume, last);
        EXPECT_EQ(run.glm.ActivePredictors, (std::vector<int>{0, 1, 2, 3, 4}));
        ASSERT_GT(std::ranges::count(run.mask.voxels, 1), 80);
        for (size_t v = 0; v < run.voxels(); ++v) {
            if (run.mask.voxels[v] == 0)
                continue;
            const ExactFit exact(run, run.glm.ActivePredictors, v, nrOfVolumes);
            for (size_t j = 0; j < 5; ++j)
                expectClose(run.glm.row(int(j))[v], exact.betas[j], effectScale, "beta", v);
            expectClose(run.glm.row(5)[v], exact.rss, 0.0, "RSS", v);
            expectClose(double(run.maps.map(0)[v]), exact.t({1, -1, 2, 0, 0}, nrOfVolumes), tScale,
                        "t", v);
        }
    }
}

} // namespace
