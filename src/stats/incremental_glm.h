// The general linear model of every brain voxel, kept up to date volume by volume.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/memory.h"
#include "base/worker_pool.h"
#include "stats/contrasts.h"
#include "stats/design_matrix.h"
#include "stats/glm_contrasts.h"
#include "stats/growing_rank.h"
#include "stats/statistical_maps.h"
#include "volume/fmr_project.h"

#include <cstdint>
#include <span>
#include <vector>

/// Voxels in which the model is fitted. Runs of consecutive voxels keep inner loops free of
/// branches.
struct BrainMask {
    struct Run {
        size_t first;
        size_t count;
        size_t before = 0; ///< voxels of the mask in the runs before it
    };
    std::vector<uint8_t> voxels; ///< non-zero inside; empty before the mask is made
    std::vector<Run> runs;

    [[nodiscard]] size_t nrOfVoxelsInside() const {
        return runs.empty() ? 0 : runs.back().before + runs.back().count;
    }
};

/// Working memory of the update, kept between volumes to avoid allocation.
struct GLMWorkspace {
    /// Of a block of voxels.
    struct Block {
        std::vector<float> betas;
        std::vector<float> variances;
    };
    std::vector<double> x;      ///< p, the predictors at the volume
    std::vector<double> q;      ///< p, iXX x
    std::vector<double> gain;   ///< p, q over the scale of the residual
    std::vector<float> inverse; ///< p x p, iXX in float
    std::vector<Block> blocks;  ///< one for each thread
};

/// The model. Row j of `values` holds beta j of every voxel, row p the residual sum of squares;
/// rows are `nrOfVoxels` apart.
struct GLMState {
    static constexpr int notStarted = 1000000;

    ZeroedBuffer<double> values;
    size_t nrOfVoxels = 0;
    int nrOfActivePredictors = 1; ///< p
    int nrOfDirections = 1;       ///< of the design, as a rule p
    std::vector<double> iXX;      ///< p x p, row-major
    std::vector<int> ActivePredictors;
    int GLMStartVolume = notStarted;
    int GLMStepIndex = 0;
    ActiveContrasts activeContrasts; ///< over the model's columns, as of the latest refresh
    GrowingRank growth;
    GLMWorkspace workspace;

    [[nodiscard]] std::span<double> row(int index) {
        return values.span().subspan(size_t(index) * nrOfVoxels, nrOfVoxels);
    }
    [[nodiscard]] std::span<const double> row(int index) const {
        return values.span().subspan(size_t(index) * nrOfVoxels, nrOfVoxels);
    }
    /// Resets to an unstarted model with (nrOfPredictors + 1) x voxels zeroed values. False, with
    /// nothing allocated, when memory runs out.
    [[nodiscard]] bool allocate(int nrOfPredictors, size_t voxels);
    /// Frees everything and resets to an unstarted model.
    void release();
};

/// The parts of a document that the update works on.
struct GLMRun {
    const FMRProject& project;
    const DesignMatrix& design;
    ContrastDefinitions& contrasts;
    const BrainMask& mask;
    GLMState& glm;
    StatisticalMaps& maps;
};

/// Mask from the first volume: all slices but the first and the last, values above the threshold
/// when read as unsigned 16-bit numbers. False, with an empty mask, after a modeless warning when
/// memory runs out; the run goes on without a model.
[[nodiscard]] bool createBrainMask(BrainMask& mask, const FMRProject& project, int threshold);

/// Mask of the voxels with a value above 0, for a model whose volumes are not in memory. False like
/// createBrainMask().
[[nodiscard]] bool createMaskOfModel(BrainMask& mask, std::span<const float> values);

/// One volume: batch solution when one is due, else the recursive update; contrasts; t values. True
/// when the overlay colours must be recomputed because the active contrasts were refreshed: at a
/// batch solution, and at every volume once ContrastsChanged is set.
///
/// While the design lacks directions the model is solved from sums at each volume, see
/// growing_rank.h, and contrasts that it can't estimate have maps of 0.
///
/// Sets NrOfActiveContrasts, states, contrastOfMap and MapDF1 of the maps: n - p, or n less the
/// directions that the design has, at least 0. MapType becomes t at the first solution. With
/// conjunction the first map holds its result and has state 3. Does nothing when the project lacks
/// the volume, or when its size or that of the mask differs from the model's.
///
/// The recursion is recursive least squares without forgetting (Haykin, Adaptive Filter Theory,
/// chapter on the RLS algorithm).
///
/// The threads share the voxels; their number changes no bit of the results.
bool updateGLM(const GLMRun& run, int volumeIndex, WorkerPool& workers = callersThread());
