// A small run with noise for tests of the model, and its least squares in extended precision.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "stats/incremental_glm.h"

#include <cmath>
#include <random>

/// 7 x 6 x 5 voxels. Slices 1 to 3 hold signal around 1000 but for some voxels below the mask's
/// threshold, so the mask has runs of many lengths.
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

    explicit GLMTestRun(int nrOfVolumes) {
        project.NrOfVolumes = nrOfVolumes;
        project.ResolutionX = 7;
        project.ResolutionY = 6;
        project.NrOfSlices = 5;
        project.volumes.resize(size_t(nrOfVolumes));
        std::normal_distribution<double> noise(0.0, 12.0);
        for (Volume& volume : project.volumes) {
            EXPECT_TRUE(volume.allocate(voxels()));
            for (size_t v = 0; v < voxels(); ++v)
                volume[v] = int16_t(v % 11 == 3 || v % 17 < 2 ? 60 : 1000 + noise(random));
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

    void addContrast(std::vector<int> weights, int state = ContrastPositive) {
        weights.resize(size_t(design.NrOfPredictors), 0);
        contrasts.ContrastWeights.push_back(std::move(weights));
        contrasts.ContrastSelectionStates.push_back(state);
        ++contrasts.NrOfContrasts;
    }

    /// After all conditions, confounds and contrasts.
    void start(std::vector<int> stepVolumes) {
        design.GLMStepVolumes = std::move(stepVolumes);
        maps.sizeX = project.ResolutionX;
        maps.sizeY = project.ResolutionY;
        maps.nrOfSlices = project.NrOfSlices;
        maps.ContrastMaps.resize(size_t(contrasts.NrOfContrasts));
        for (auto& map : maps.ContrastMaps)
            ASSERT_TRUE(map.allocate(voxels()));
        ASSERT_TRUE(createBrainMask(mask, project));
        ASSERT_TRUE(glm.allocate(design.NrOfPredictors, voxels()));
    }

    void update(int first, int last) {
        for (int t = first; t <= last; ++t)
            updateGLM(parts(), t);
    }
};

/// Ordinary least squares by the normal equations in long double.
struct ExactFit {
    std::vector<long double> betas;
    long double rss = 0;

    ExactFit(const GLMTestRun& run, const std::vector<int>& columns, size_t voxel, int n)
        : p(columns.size()), a(p, std::vector<long double>(2 * p + 1, 0)) {
        const auto x = [&](size_t t, size_t j) {
            return (long double)(run.design.PredictorColumns[size_t(columns[j])][t]);
        };
        for (size_t i = 0; i < p; ++i) {
            a[i][p + i] = 1;
            for (size_t t = 0; t < size_t(n); ++t) {
                a[i][2 * p] += x(t, i) * run.project.volumes[t][voxel];
                for (size_t j = 0; j < p; ++j)
                    a[i][j] += x(t, i) * x(t, j);
            }
        }
        // Gauss-Jordan; designs here are well enough conditioned without pivots.
        for (size_t i = 0; i < p; ++i) {
            const long double pivot = a[i][i];
            for (long double& value : a[i])
                value /= pivot;
            for (size_t k = 0; k < p; ++k)
                if (const long double factor = a[k][i]; k != i)
                    for (size_t j = 0; j < a[k].size(); ++j)
                        a[k][j] -= factor * a[i][j];
        }
        for (size_t i = 0; i < p; ++i)
            betas.push_back(a[i][2 * p]);
        for (size_t t = 0; t < size_t(n); ++t) {
            long double e = run.project.volumes[t][voxel];
            for (size_t j = 0; j < p; ++j)
                e -= x(t, j) * betas[j];
            rss += e * e;
        }
    }

    [[nodiscard]] double t(const std::vector<int>& contrast, int n) const {
        long double effect = 0;
        long double variance = 0;
        for (size_t i = 0; i < p; ++i) {
            effect += contrast[i] * betas[i];
            for (size_t j = 0; j < p; ++j)
                variance += contrast[i] * a[i][p + j] * contrast[j];
        }
        return double(effect / std::sqrt(variance * rss / (n - (long double)(p))));
    }

private:
    size_t p;
    std::vector<std::vector<long double>> a; ///< [X'X | I | X'y], reduced to [I | inverse | betas]
};
