// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include "stats/design_rank.h"
#include "stats/glm_run.h"

namespace {

/// Least squares in double by singular values of X itself, with columns of unit length; directions
/// below 1e-5 of the largest value are left out. Responses are taken less the first one.
struct TruncatedFit {
    int rank = 0;
    double t = 0; ///< of the first predictor

    TruncatedFit(const GLMTestRun& run, size_t voxel, int n) {
        std::vector<std::vector<double>> u; // columns of X / length, then of U diag(w)
        std::vector<double> first;          // row 0 of V
        for (const int column : run.glm.ActivePredictors) {
            const auto& values = run.design.PredictorColumns[size_t(column)];
            u.emplace_back(values.begin(), values.begin() + n);
            const double length = std::sqrt(dot(u.back(), u.back()));
            for (double& value : u.back())
                value /= length;
            first.push_back(first.empty() ? 1.0 : 0.0);
        }
        for (bool rotated = true; rotated;) {
            rotated = false;
            for (size_t i = 0; i < u.size(); ++i)
                for (size_t j = i + 1; j < u.size(); ++j)
                    rotated = rotate(u[i], u[j], first[i], first[j]) || rotated;
        }
        std::vector<double> y;
        for (size_t i = 0; i < size_t(n); ++i)
            y.push_back(run.project.volumes[i][voxel] - run.project.volumes[0][voxel]);
        double largest = 0;
        for (const auto& column : u)
            largest = std::max(largest, dot(column, column));
        double effect = 0;
        double variance = 0;
        double rss = dot(y, y);
        for (size_t k = 0; k < u.size(); ++k) {
            const double square = dot(u[k], u[k]);
            if (square < 1e-10 * largest)
                continue;
            ++rank;
            const double projection = dot(u[k], y);
            effect += first[k] * projection / square;
            variance += first[k] * first[k] / square;
            rss -= projection * projection / square;
        }
        t = n > rank ? effect / std::sqrt(variance * rss / (n - rank)) : 0;
    }

private:
    static double dot(const std::vector<double>& a, const std::vector<double>& b) {
        return std::inner_product(a.begin(), a.end(), b.begin(), 0.0);
    }
    static bool rotate(std::vector<double>& a, std::vector<double>& b, double& va, double& vb) {
        const double ab = dot(a, b);
        const double aa = dot(a, a);
        const double bb = dot(b, b);
        if (std::abs(ab) < 1e-14 * std::sqrt(aa * bb) || std::min(aa, bb) < 1e-24)
            return false;
        const double angle = 0.5 * std::atan2(2 * ab, aa - bb);
        const double c = std::cos(angle);
        const double s = std::sin(angle);
        for (size_t i = 0; i < a.size(); ++i)
            std::tie(a[i], b[i]) = std::pair(c * a[i] + s * b[i], c * b[i] - s * a[i]);
        std::tie(va, vb) = std::pair(c * va + s * vb, c * vb - s * va);
        return true;
    }
};

void expectTruncatedFit(const GLMTestRun& run, int n) {
    for (size_t v = 42; v < 168; v += 17) {
        if (run.mask.voxels[v] == 0 || run.maps.NrOfActiveContrasts == 0)
            continue;
        const TruncatedFit exact(run, v, n);
        ASSERT_EQ(run.maps.MapDF1, n - exact.rank) << n;
        ASSERT_NEAR(run.maps.map(0)[v], exact.t, 1e-3 * std::max(1.0, std::abs(exact.t))) << n;
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
    const std::tuple<int, int, int> cases[] = {{100, 1, 0},  {100, 4, 2}, {300, 1, 1}, {300, 1, 3},
                                               {300, 2, 10}, {300, 4, 5}, {3000, 2, 2}};
    for (const auto& [volumes, conditions, drift] : cases) {
        GLMTestRun run = driftingRun(volumes, conditions, drift);
        for (int t = 0; t < volumes; ++t) {
            updateGLM(run.parts(), t);
            if (t % (volumes / 12) == volumes / 12 - 1)
                expectTruncatedFit(run, t + 1);
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
            expectTruncatedFit(run, t + 1);
        run.glm.growth.sums.release();
    }
    EXPECT_EQ(directions, 5);
    expectTruncatedFit(run, 300);
}

/// Two conditions that add up to the constant.
TEST(GrowingRank, WhatCanNotBeEstimatedHasNoMapAndIsNamed) {
    GLMTestRun run(80);
    run.addCondition(0, 12);
    run.addCondition(0, 12);
    for (size_t t = 0; t < 80; ++t)
        run.design.PredictorColumns[1][t] = 1.0f - run.design.PredictorColumns[0][t];
    run.addConfounds(2);
    run.addContrast({1, 0});
    run.addContrast({1, -1});
    run.start({11});
    run.update(0, 79);
    for (size_t v = 42; v < 168; ++v) {
        if (run.mask.voxels[v] == 0)
            continue;
        EXPECT_EQ(run.maps.map(0)[v], 0.0f);
        const double t = ExactFit(run, {0, 2, 3}, v, 80).t({1, 0, 0}, 80);
        EXPECT_NEAR(run.maps.map(1)[v], t, 1e-3 * std::max(1.0, std::abs(t)));
    }
}

} // namespace
