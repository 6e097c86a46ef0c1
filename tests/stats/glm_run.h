// A small run with noise for tests of the model, and its least squares in double precision.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "stats/incremental_glm.h"
#include "stats/numerics/linear_systems.h"

#include <cmath>
#include <numeric>
#include <random>

/// Unless the size is given, 7 x 6 x 5 voxels. Inner slices hold signal around 1000 but for some
/// voxels below the mask's threshold, so the mask has runs of many lengths.
struct GLMTestRun {
    FMRProject project;
    DesignMatrix design;
    ContrastDefinitions contrasts;
    BrainMask mask;
    GLMState glm;
    StatisticalMaps maps;
    std::mt19937 random{20};

    GLMRun parts() { return {project, design, contrasts, mask, glm, maps}; }
    size_t voxels() const { return project.volumeSamples(); }

    explicit GLMTestRun(int nrOfVolumes, const VolumeSize& size = {7, 6, 5}) {
        project.NrOfVolumes = nrOfVolumes;
        project.ResolutionX = size.x;
        project.ResolutionY = size.y;
        project.NrOfSlices = size.slices;
        EXPECT_TRUE(project.allocateVolumes());
        std::normal_distribution<double> noise(0.0, 12.0);
        for (size_t t = 0; t < project.volumes.size(); ++t) {
            for (size_t v = 0; v < voxels(); ++v)
                project.volumes[t][v] =
                    int16_t(v % 11 == 3 || v % 17 < 2 ? 60 : 1000 + noise(random));
        }
        design.NrOfVolumes = nrOfVolumes;
    }

    /// Blocks of `length` volumes from each onset on, with a smooth rise, repeated every 40
    /// volumes.
    void addCondition(int onset, int length) {
        std::vector<float>& column = design.PredictorColumns[size_t(design.NrOfPredictors++)];
        column.assign(project.volumes.size(), 0.0f);
        for (int t = onset; t < int(column.size()); ++t)
            if ((t - onset) % 40 < length)
                column[size_t(t)] = float(0.2 + 0.8 * std::sin(0.3 + (t - onset) % 40 * 0.25));
        ++design.NrOfConditionPredictors;
        design.PredictorOnsets.push_back(onset);
        for (size_t v = 0; v < voxels(); ++v)
            for (size_t t = 0; t < column.size(); ++t)
                project.volumes[t][v] =
                    int16_t(project.volumes[t][v] + column[t] * float(int(v % 9) - 3) * 8.0f);
    }

    /// The constant and, if `nrOfColumns` is 2, a trend.
    void addConfounds(int nrOfColumns) {
        design.NrOfConfoundPredictors = nrOfColumns;
        for (int c = 0; c < nrOfColumns; ++c)
            for (size_t t = 0; t < project.volumes.size(); ++t)
                design.PredictorColumns[size_t(design.NrOfPredictors + c)].push_back(
                    c == 0 ? 1.0f : float(t) / float(project.volumes.size()) * 2 - 1);
        design.NrOfPredictors += nrOfColumns;
    }

    /// The constant and so many drift terms, as a run has them.
    void addDriftTerms(int nrOfTerms) {
        design.NrOfConfoundPredictors = 1 + nrOfTerms;
        EXPECT_TRUE(fillConfoundColumns(design, {{}, 2000.0f, design.NrOfVolumes, 1, nrOfTerms}));
        design.NrOfPredictors += 1 + nrOfTerms;
    }

    void addContrast(std::vector<int> weights, int state = ContrastPositive) {
        weights.resize(size_t(design.NrOfPredictors), 0);
        contrasts.ContrastWeights.push_back(std::move(weights));
        contrasts.ContrastSelectionStates.push_back(state);
        ++contrasts.NrOfContrasts;
    }

    /// Call after all conditions, confounds and contrasts.
    void start(std::vector<int> stepVolumes) {
        design.GLMStepVolumes = std::move(stepVolumes);
        ASSERT_TRUE(maps.allocateMaps(contrasts.NrOfContrasts, project.size()));
        ASSERT_TRUE(createBrainMask(mask, project, 100));
        ASSERT_TRUE(glm.allocate(design.NrOfPredictors, voxels()));
    }

    void update(int first, int last) {
        for (int t = first; t <= last; ++t)
            updateGLM(parts(), t);
    }
};

/// Ordinary least squares by the normal equations, in double and without the decomposition that the
/// program's solutions use.
struct ExactFit {
    std::vector<double> betas;
    double rss = 0;

    ExactFit(const GLMTestRun& run, const std::vector<int>& columns, size_t voxel, int n)
        : betas(columns.size()), inverse_(columns.size() * columns.size()) {
        const size_t p = columns.size();
        const auto x = [&](size_t t, size_t j) {
            return double(run.design.PredictorColumns[size_t(columns[j])][t]);
        };
        for (size_t t = 0; t < size_t(n); ++t) {
            const double y = double(run.project.volumes[t][voxel]);
            for (size_t i = 0; i < p; ++i) {
                betas[i] += x(t, i) * y;
                for (size_t j = 0; j < p; ++j)
                    inverse_[i * p + j] += x(t, i) * x(t, j);
            }
        }
        EXPECT_EQ(numerics::eliminateGaussJordan(inverse_, int(p), betas, 1),
                  numerics::Elimination::Done);
        for (size_t t = 0; t < size_t(n); ++t) {
            double e = double(run.project.volumes[t][voxel]);
            for (size_t j = 0; j < p; ++j)
                e -= x(t, j) * betas[j];
            rss += e * e;
        }
    }

    [[nodiscard]] double t(const std::vector<int>& contrast, int n) const {
        const size_t p = betas.size();
        double effect = 0;
        double variance = 0;
        for (size_t i = 0; i < p; ++i) {
            effect += contrast[i] * betas[i];
            for (size_t j = 0; j < p; ++j)
                variance += contrast[i] * inverse_[i * p + j] * contrast[j];
        }
        return effect / std::sqrt(variance * rss / (n - double(p)));
    }

private:
    std::vector<double> inverse_;
};
