// The general linear model of every brain voxel, kept up to date volume by volume.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/memory.h"
#include "stats/contrasts.h"
#include "stats/design_matrix.h"
#include "stats/statistical_maps.h"
#include "volume/fmr_project.h"

#include <cstdint>
#include <span>
#include <vector>

/// Voxels in which the model is fitted. Runs of consecutive voxels keep inner loops straight.
struct BrainMask {
    struct Run {
        size_t first;
        size_t count;
    };
    std::vector<uint8_t> voxels; ///< non-zero inside; empty before the mask is made
    std::vector<Run> runs;
    size_t nrOfVoxels = 0;
};

/// The model. Row j of `values` holds beta j of every voxel, row p the residual sum of squares;
/// one voxel's values are `nrOfVoxels` apart.
struct GLMState {
    static constexpr int notStarted = 1000000;

    ZeroedBuffer<double> values;
    size_t nrOfVoxels = 0;
    int nrOfActivePredictors = 1; ///< p
    std::vector<double> iXX;      ///< p x p, row-major
    std::vector<int> ActivePredictors;
    int GLMStartVolume = notStarted;
    int GLMStepIndex = 0;

    [[nodiscard]] std::span<double> row(int index) {
        return values.span().subspan(size_t(index) * nrOfVoxels, nrOfVoxels);
    }
    [[nodiscard]] std::span<const double> row(int index) const {
        return values.span().subspan(size_t(index) * nrOfVoxels, nrOfVoxels);
    }
    /// Allocates and zeroes (nrOfPredictors + 1) x voxels. False when memory runs out.
    [[nodiscard]] bool allocate(int nrOfPredictors, size_t voxels);
    void release();
};

/// The parts of a document that the update works on.
struct GLMRun {
    const FMRProject& project;
    const DesignMatrix& design;
    ContrastDefinitions& contrasts;
    BrainMask& mask;
    GLMState& glm;
    StatisticalMaps& maps;
};

/// Mask from the first volume: all slices but the first and the last, values above the threshold
/// when read as unsigned 16-bit numbers. False after a message when memory runs out.
[[nodiscard]] bool createBrainMask(BrainMask& mask, const FMRProject& project, int threshold = 100);

/// One volume: batch solution when one is due, else the recursive update; contrasts; t values.
/// True when the overlay colours must be computed again because the active contrasts changed.
bool updateGLM(const GLMRun& run, int volumeIndex);
