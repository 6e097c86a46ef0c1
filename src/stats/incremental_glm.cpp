// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/incremental_glm.h"

#include "stats/glm_batch.h"
#include "stats/glm_blocks.h"

#include <algorithm>
#include <optional>

bool GLMState::allocate(int nrOfPredictors, size_t voxels) {
    release();
    const size_t rows = size_t(std::max(nrOfPredictors, 0)) + 1;
    if (!memoryIsAvailable(voxels, rows * sizeof(double)) || !values.allocate(rows * voxels))
        return false;
    nrOfVoxels = voxels;
    return true;
}

void GLMState::release() {
    *this = GLMState{};
}

namespace {

void sizeWorkspace(GLMWorkspace& workspace, size_t p, int nrOfThreads) {
    workspace.x.resize(p);
    workspace.q.resize(p);
    workspace.gain.resize(p);
    workspace.inverse.resize(p * p);
    workspace.blocks.resize(size_t(nrOfThreads));
    for (GLMWorkspace::Block& block : workspace.blocks) {
        block.betas.resize(p * glmBlockVoxels);
        block.variances.resize(glmBlockVoxels);
    }
}

void takePredictors(GLMState& glm, const DesignMatrix& design, int volumeIndex) {
    for (size_t j = 0; j < glm.workspace.x.size(); ++j)
        glm.workspace.x[j] = double(designValue(design, glm.ActivePredictors[j], volumeIndex));
}

/// Updates iXX with the predictors of a volume. The unchanged q and mirroring the upper triangle
/// keep the matrix exactly symmetric.
RecursiveStep advanceInverse(GLMState& glm) {
    GLMWorkspace& work = glm.workspace;
    const size_t p = size_t(glm.nrOfActivePredictors);
    double sum = 0.0;
    for (size_t i = 0; i < p; ++i) {
        work.q[i] = 0.0;
        for (size_t j = 0; j < p; ++j)
            work.q[i] += glm.iXX[i * p + j] * work.x[j];
        sum += work.q[i] * work.x[i];
    }
    const double scale = 1.0 + sum;
    for (size_t i = 0; i < p; ++i) {
        work.gain[i] = work.q[i] / scale;
        for (size_t j = i; j < p; ++j) {
            glm.iXX[i * p + j] -= work.q[j] * work.gain[i];
            glm.iXX[j * p + i] = glm.iXX[i * p + j];
        }
    }
    return {work.x, work.gain, scale};
}

void prepareContrasts(const GLMRun& run, bool refresh) {
    GLMState& glm = run.glm;
    if (refresh)
        refreshActiveContrasts(glm.activeContrasts, run.contrasts, run.maps, glm.ActivePredictors);
    markConjunction(run.contrasts, run.maps);
    std::copy(glm.iXX.begin(), glm.iXX.end(), glm.workspace.inverse.begin());
    computeContrastVariances(glm.activeContrasts, glm.workspace.inverse);
    withdrawInestimable(glm);
}

/// True when all active contrasts still have a map of the model's size.
bool mapsFit(const GLMRun& run) {
    const StatisticalMaps& maps = run.maps;
    const int count = run.glm.activeContrasts.count;
    return maps.NrOfActiveContrasts == count && count <= maps.nrOfMaps &&
           maps.size.samples() == run.glm.nrOfVoxels;
}

/// How a volume reaches the voxels; neither where they are solved already.
struct VoxelUpdate {
    std::optional<RecursiveStep> recursion;
    bool fromSums = false;
};

/// Takes the volume into the matrices of a model that has been solved before.
VoxelUpdate advanceModel(const GLMRun& run, int volumeIndex, WorkerPool& workers) {
    GLMState& glm = run.glm;
    takePredictors(glm, run.design, volumeIndex);
    const Growth growth =
        glm.growth.open ? growRank(glm, run.design, run.project, run.mask, volumeIndex, workers)
                        : Growth::None;
    VoxelUpdate update;
    if (growth == Growth::None)
        update.recursion = advanceInverse(glm);
    update.fromSums = growth == Growth::Sums;
    return update;
}

/// Updates betas and residual sums of squares, then the t values while the block is in the cache.
void updateVoxels(const GLMRun& run, const VoxelUpdate& update, int volumeIndex,
                  WorkerPool& workers) {
    GLMState& glm = run.glm;
    const int16_t* samples = run.project.volumes[size_t(volumeIndex)].data();
    const float degreesOfFreedom = float(volumeIndex + 1 - glm.nrOfDirections);
    const bool withMaps = glm.activeContrasts.count > 0 && mapsFit(run);
    const bool withConjunction = conjunctionApplies(run.contrasts, run.maps);
    forEachBlock(run.mask, workers, [&](const MaskBlock& block, size_t thread) {
        const auto [first, count, before] = block;
        double* values = glm.values.data() + first;
        if (update.recursion)
            updateBetasAndResiduals(*update.recursion, samples + first, values, glm.nrOfVoxels,
                                    count);
        if (update.fromSums)
            updateBlockFromSums(glm, run.project, volumeIndex, block);
        if (!withMaps)
            return;
        GLMWorkspace::Block& work = glm.workspace.blocks[thread];
        copyBetasAndVariances(values, glm.nrOfVoxels, glm.nrOfActivePredictors, degreesOfFreedom,
                              count, work.betas.data(), work.variances.data());
        const BlockEstimates estimates{work.betas.data(), glmBlockVoxels, work.variances.data()};
        computeBlockMaps(glm.activeContrasts, estimates, first, count, withConjunction, run.maps);
    });
}

bool volumeFits(const GLMRun& run, int volumeIndex) {
    const FMRProject& project = run.project;
    return volumeIndex >= 0 && size_t(volumeIndex) < project.volumes.size() &&
           !run.glm.values.empty() && project.volumes.samplesOfEach() == run.glm.nrOfVoxels &&
           run.mask.voxels.size() == run.glm.nrOfVoxels;
}

} // namespace

bool updateGLM(const GLMRun& run, int volumeIndex, WorkerPool& workers) {
    if (!volumeFits(run, volumeIndex))
        return false;
    GLMState& glm = run.glm;
    const bool solved = isBatchSolutionDue(glm, run.design, volumeIndex) &&
                        solveBatch(glm, run.project, run.design, run.mask, volumeIndex, workers);
    if (!solved && volumeIndex <= glm.GLMStartVolume)
        return false;

    sizeWorkspace(glm.workspace, size_t(glm.nrOfActivePredictors), workers.nrOfThreads());
    VoxelUpdate update;
    if (!solved)
        update = advanceModel(run, volumeIndex, workers);
    // Once set, the flag stays set until the next run, and every volume refreshes the contrasts.
    const bool refresh = solved || run.contrasts.ContrastsChanged;
    prepareContrasts(run, refresh);
    updateVoxels(run, update, volumeIndex, workers);
    if (!glm.growth.open)
        glm.growth.release();

    run.maps.MapDF1 = std::max(volumeIndex + 1 - glm.nrOfDirections, 0);
    run.maps.MapDF2 = 0;
    if (solved && glm.GLMStepIndex < 2)
        run.maps.MapType = MapKind::T;
    return refresh;
}
