// A small run with noise for tests of the model, and its least squares in double precision.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "stats/incremental_glm.h"

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

/// Least squares in double of the active predictors in the first n volumes, by rotations that make
/// the columns of X orthogonal, once they have unit length. Directions below 1e-5 of the largest
/// are left out. Responses are taken less the first one.
struct ExactFit {
    int rank = 0;
    double rss = 0;
    std::vector<double> betas;

    ExactFit(const GLMTestRun& run, size_t voxel, int n)
        : betas(run.glm.ActivePredictors.size()), n_(n) {
        const std::vector<int>& active = run.glm.ActivePredictors;
        std::vector<std::vector<double>> columns; // below each, what it is made of
        for (size_t j = 0; j < active.size(); ++j) {
            const std::vector<float>& values = run.design.PredictorColumns[size_t(active[j])];
            std::vector<double>& column = columns.emplace_back(size_t(n) + active.size());
            std::copy_n(values.begin(), n, column.begin());
            const double length = std::sqrt(dot(column, column));
            column[size_t(n) + j] = 1.0;
            for (double& value : column)
                value /= length;
        }
        for (bool rotated = true; rotated;) {
            rotated = false;
            for (size_t i = 0; i < columns.size(); ++i)
                for (size_t j = i + 1; j < columns.size(); ++j)
                    rotated = rotate(columns[i], columns[j]) || rotated;
        }
        std::vector<double> y;
        for (size_t t = 0; t < size_t(n); ++t)
            y.push_back(run.project.volumes[t][voxel] - run.project.volumes[0][voxel]);
        rss = dot(y, y);
        double largest = 0;
        for (const auto& column : columns)
            largest = std::max(largest, dot(column, column));
        for (const auto& column : columns) {
            const double square = dot(column, column);
            if (square < 1e-10 * largest)
                continue;
            ++rank;
            const double projection = dot(column, y) / std::sqrt(square);
            rss -= projection * projection;
            std::vector<double>& direction =
                directions_.emplace_back(column.begin() + n, column.end());
            for (size_t j = 0; j < betas.size(); ++j) {
                direction[j] /= std::sqrt(square);
                betas[j] += direction[j] * projection;
            }
        }
    }

    /// Of a contrast of the first predictors.
    [[nodiscard]] double t(const std::vector<double>& contrast) const {
        const auto times = [&contrast](const std::vector<double>& values) {
            return std::inner_product(contrast.begin(), contrast.end(), values.begin(), 0.0);
        };
        double variance = 0;
        for (const auto& direction : directions_)
            variance += times(direction) * times(direction);
        return n_ > rank ? times(betas) / std::sqrt(variance * rss / (n_ - rank)) : 0;
    }

private:
    [[nodiscard]] double dot(const std::vector<double>& a, const std::vector<double>& b) const {
        return std::inner_product(a.begin(), a.begin() + n_, b.begin(), 0.0);
    }
    bool rotate(std::vector<double>& a, std::vector<double>& b) const {
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
        return true;
    }

    int n_;
    std::vector<std::vector<double>> directions_; ///< of unit length, by predictor
};
