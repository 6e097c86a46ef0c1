// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/growing_rank.h"

#include "stats/design_rank.h"
#include "stats/glm_batch.h"
#include "stats/glm_blocks.h"
#include "stats/glm_sums.h"
#include "stats/numerics/linear_systems.h"

namespace {

// Where a batch solution in float misses the t values of one in double by more than 1e-3 although
// the inverse has kept all directions: below this ratio of the smallest to the largest eigenvalue
// of X'X, with columns of unit length, and in sums over more volumes than these. The recursion, in
// double, is exact from any design on that has all directions. docs/performance.md has the figures.
constexpr double smallestEigenvalueInFloat = 1e-2;
constexpr int mostVolumesInFloat = 100;

bool isExactInFloat(const BatchDesign& batch, const numerics::NormalInverse& normal) {
    return batch.rank == batch.p && batch.n <= mostVolumesInFloat &&
           normal.smallestEigenvalue >= smallestEigenvalueInFloat;
}

bool invert(GrowingRank& growth, int p, numerics::NormalInverse& normal) {
    if (!numerics::invertNormalMatrix(growth.xx, p, normal))
        return false;
    growth.open = normal.rank < p;
    return true;
}

void takeInverse(GLMState& glm, numerics::NormalInverse& normal) {
    glm.nrOfDirections = normal.rank;
    glm.iXX = std::move(normal.inverse);
}

/// Index in the model of a column that is 1 in the whole run; -1 without one.
int constantOf(const std::vector<int>& columns, const DesignMatrix& design) {
    for (size_t j = 0; j < columns.size(); ++j) {
        const std::vector<float>& values = design.PredictorColumns[size_t(columns[j])];
        if (int(values.size()) >= design.NrOfVolumes && !values.empty() &&
            std::ranges::all_of(values, [](float value) { return value == 1.0f; }))
            return int(j);
    }
    return -1;
}

SumsReference referenceOf(const GrowingRank& growth, const FMRProject& project, size_t first) {
    if (growth.constant < 0)
        return {};
    return {project.volumes[0].data() + first, size_t(growth.constant)};
}

void solveVoxels(GLMState& glm, const BatchDesign& batch, const FMRProject& project,
                 const BrainMask& mask, WorkerPool& workers) {
    const size_t p = size_t(batch.p);
    const bool keep =
        glm.growth.open && glm.growth.sums.allocate(mask.nrOfVoxelsInside() * (p + 1));
    const std::vector<double> x(batch.x.begin(), batch.x.end());
    const size_t sumsOfBlock = (p + 1) * glmBlockVoxels;
    std::vector<double> scratch(keep ? 0 : sumsOfBlock * size_t(workers.nrOfThreads()));
    forEachBlockOverTime(mask, project, batch.n, workers,
                         [&](const auto& samples, const MaskBlock& block, size_t thread) {
                             double* sums = keep ? glm.growth.sums.data() + block.before * (p + 1)
                                                 : scratch.data() + thread * sumsOfBlock;
                             std::fill_n(sums, (p + 1) * block.count, 0.0);
                             const SumsReference reference =
                                 referenceOf(glm.growth, project, block.first);
                             for (size_t t = 0; t < samples.size(); ++t)
                                 addVolumeToSums(std::span(x).subspan(t * p, p), samples[t],
                                                 reference, block.count, sums);
                             solveFromSums(glm.iXX, p, reference, sums, block.count,
                                           glm.values.data() + block.first, glm.nrOfVoxels);
                         });
}

} // namespace

bool solveInDouble(GLMState& glm, const BatchDesign& batch, const DesignMatrix& design,
                   const FMRProject& project, const BrainMask& mask, WorkerPool& workers) {
    GrowingRank& growth = glm.growth;
    growth.release();
    growth.xx = normalMatrix(batch.x, size_t(batch.p));
    numerics::NormalInverse normal;
    if (!invert(growth, batch.p, normal) || isExactInFloat(batch, normal)) {
        growth.release();
        return false;
    }
    growth.constant = constantOf(glm.ActivePredictors, design);
    takeInverse(glm, normal);
    solveVoxels(glm, batch, project, mask, workers);
    return true;
}

Growth growRank(GLMState& glm, const DesignMatrix& design, const FMRProject& project,
                const BrainMask& mask, int volumeIndex, WorkerPool& workers) {
    GrowingRank& growth = glm.growth;
    const std::vector<double>& x = glm.workspace.x;
    for (size_t i = 0; i < x.size(); ++i)
        for (size_t j = 0; j < x.size(); ++j)
            growth.xx[i * x.size() + j] += x[i] * x[j];
    const int p = glm.nrOfActivePredictors;
    numerics::NormalInverse normal;
    if (!invert(growth, p, normal))
        return Growth::None;
    if (!growth.sums.empty()) {
        takeInverse(glm, normal);
        return Growth::Sums;
    }
    BatchDesign batch;
    if ((growth.open && normal.rank <= glm.nrOfDirections) ||
        !makeBatchDesign(batch, design, glm.ActivePredictors, volumeIndex + 1))
        return Growth::None;
    growth.xx = normalMatrix(batch.x, size_t(p));
    if (!invert(growth, p, normal))
        return Growth::None;
    takeInverse(glm, normal);
    solveVoxels(glm, batch, project, mask, workers);
    return Growth::Solved;
}

void updateBlockFromSums(GLMState& glm, const FMRProject& project, int volumeIndex,
                         const MaskBlock& block) {
    const auto [first, count, before] = block;
    const size_t p = size_t(glm.nrOfActivePredictors);
    double* sums = glm.growth.sums.data() + before * (p + 1);
    const SumsReference reference = referenceOf(glm.growth, project, first);
    addVolumeToSums(glm.workspace.x, project.volumes[size_t(volumeIndex)].data() + first, reference,
                    count, sums);
    solveFromSums(glm.iXX, p, reference, sums, count, glm.values.data() + first, glm.nrOfVoxels);
}

void withdrawInestimable(GLMState& glm) {
    if (glm.growth.xx.empty() || glm.nrOfDirections == glm.nrOfActivePredictors)
        return;
    for (int c = 0; c < glm.activeContrasts.count; ++c)
        if (!isEstimable(glm.activeContrasts.row(c), glm.growth.xx, glm.iXX))
            glm.activeContrasts.variances[size_t(c)] = 0.0f;
}
