// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/glm_batch.h"

#include "stats/glm_blocks.h"
#include "stats/growing_rank.h"
#include "stats/numerics/failures.h"
#include "stats/numerics/linear_systems.h"
#include "stats/numerics/matrix_products.h"

namespace {

void solveVoxels(GLMState& glm, const FMRProject& project, const BrainMask& mask,
                 const BatchDesign& batch, std::vector<BatchScratch>& scratch,
                 WorkerPool& workers) {
    forEachBlockOverTime(mask, project, batch.n, workers,
                         [&](const auto& samples, const MaskBlock& block, size_t thread) {
                             solveBlock(batch, samples, block.count, scratch[thread],
                                        glm.values.data() + block.first, glm.nrOfVoxels);
                         });
}

} // namespace

std::vector<int> activePredictorsAt(const DesignMatrix& design, int volumeIndex) {
    std::vector<int> columns;
    const int conditions =
        std::min(design.NrOfConditionPredictors, int(design.PredictorOnsets.size()));
    for (int column = 0; column < conditions; ++column)
        if (design.PredictorOnsets[size_t(column)] <= volumeIndex)
            columns.push_back(column);
    for (int c = 0; c < design.NrOfConfoundPredictors; ++c)
        if (design.NrOfConditionPredictors + c < DesignMatrix::maximumPredictors)
            columns.push_back(design.NrOfConditionPredictors + c);
    return columns;
}

bool makeBatchDesign(BatchDesign& batch, const DesignMatrix& design,
                     const std::vector<int>& columns, int n) {
    const int p = int(columns.size());
    batch.p = p;
    batch.n = n;
    std::vector<float> xx;
    if (!numerics::allocateMatrix(batch.x, size_t(n), size_t(p)) ||
        !numerics::allocateMatrix(xx, size_t(p), size_t(p)) ||
        !numerics::allocateMatrix(batch.inverse, size_t(p), size_t(p)))
        return false;
    for (int t = 0; t < n; ++t)
        for (int j = 0; j < p; ++j)
            batch.x[size_t(t) * size_t(p) + size_t(j)] = designValue(design, columns[size_t(j)], t);
    numerics::t_intel_matrix_matrix_mult_f(batch.x.data(), batch.x.data(), xx.data(), p, p, n, true,
                                           false);
    return numerics::invertMatrix(xx, batch.inverse, p, &batch.rank);
}

float designValue(const DesignMatrix& design, int column, int volumeIndex) {
    const std::vector<float>& values = design.PredictorColumns[size_t(column)];
    return size_t(volumeIndex) < values.size() ? values[size_t(volumeIndex)] : 0.0f;
}

bool isBatchSolutionDue(const GLMState& glm, const DesignMatrix& design, int volumeIndex) {
    return size_t(glm.GLMStepIndex) < design.GLMStepVolumes.size() &&
           design.GLMStepVolumes[size_t(glm.GLMStepIndex)] == volumeIndex;
}

bool solveBatch(GLMState& glm, const FMRProject& project, const DesignMatrix& design,
                const BrainMask& mask, int volumeIndex, WorkerPool& workers) {
    const int n = volumeIndex + 1;
    std::vector<int> columns = activePredictorsAt(design, volumeIndex);
    if (columns.empty() || !volumesHaveSize(project, n, glm.nrOfVoxels) ||
        (columns.size() + 1) * glm.nrOfVoxels > glm.values.size())
        return false;
    BatchDesign batch;
    std::vector<BatchScratch> scratch(size_t(workers.nrOfThreads()));
    const auto allocate = [&](BatchScratch& block) { return block.allocate(batch.p, batch.n); };
    if (!makeBatchDesign(batch, design, columns, n) || !std::ranges::all_of(scratch, allocate))
        return false;
    glm.GLMStartVolume = volumeIndex;
    if (glm.GLMStepIndex < design.NrOfConditionPredictors - 1)
        ++glm.GLMStepIndex;
    glm.nrOfActivePredictors = batch.p;
    glm.ActivePredictors = std::move(columns);
    if (solveInDouble(glm, batch, design, project, mask, workers))
        return true;
    glm.nrOfDirections = batch.p;
    glm.iXX.assign(batch.inverse.begin(), batch.inverse.end());
    solveVoxels(glm, project, mask, batch, scratch, workers);
    return true;
}
