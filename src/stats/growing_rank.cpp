// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/growing_rank.h"

#include "stats/design_rank.h"
#include "stats/glm_batch.h"
#include "stats/glm_blocks.h"
#include "stats/glm_sums.h"
#include "stats/numerics/linear_systems.h"

namespace {

/// Smallest over largest eigenvalue of X'X, with columns of unit length, from which on the batch
/// solution in float and the recursion are exact enough.
constexpr double completeDesign = 1e-4;

bool invert(GrowingRank& growth, int p, numerics::NormalInverse& normal) {
    if (!numerics::invertNormalMatrix(growth.xx, p, normal))
        return false;
    growth.open = normal.rank < p || normal.smallestEigenvalue < completeDesign;
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

size_t voxelsOf(const BrainMask& mask) {
    size_t count = 0;
    for (const BrainMask::Run& run : mask.runs)
        count += run.count;
    return count;
}

void solveVoxels(GLMState& glm, const BatchDesign& batch, const FMRProject& project,
                 const BrainMask& mask) {
    const size_t p = size_t(batch.p);
    const bool keep = glm.growth.sums.allocate(voxelsOf(mask) * (p + 1));
    std::vector<double> x(p);
    std::vector<double> scratch(keep ? 0 : (p + 1) * glmBlockVoxels);
    size_t position = 0;
    forEachBlockOverTime(
        mask, project, batch.n, [&](const auto& samples, size_t first, size_t count) {
            double* sums = keep ? glm.growth.sums.data() + position * (p + 1) : scratch.data();
            std::fill_n(sums, (p + 1) * count, 0.0);
            const SumsReference reference = referenceOf(glm.growth, project, first);
            for (size_t t = 0; t < samples.size(); ++t) {
                std::copy_n(batch.x.begin() + ptrdiff_t(t * p), p, x.begin());
                addVolumeToSums(x, samples[t], reference, count, sums);
            }
            solveFromSums(glm.iXX, p, reference, sums, count, glm.values.data() + first,
                          glm.nrOfVoxels);
            position += count;
        });
}

} // namespace

bool solveIncompleteDesign(GLMState& glm, const BatchDesign& batch, const DesignMatrix& design,
                           const FMRProject& project, const BrainMask& mask) {
    GrowingRank& growth = glm.growth;
    growth.release();
    growth.xx = normalMatrix(batch.x, size_t(batch.p));
    numerics::NormalInverse normal;
    if (!invert(growth, batch.p, normal) || (batch.rank == batch.p && !growth.open)) {
        growth.release();
        return false;
    }
    growth.open = true;
    growth.constant = constantOf(glm.ActivePredictors, design);
    takeInverse(glm, normal);
    solveVoxels(glm, batch, project, mask);
    return true;
}

Growth growRank(GLMState& glm, const DesignMatrix& design, const FMRProject& project,
                const BrainMask& mask, int volumeIndex) {
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
    solveVoxels(glm, batch, project, mask);
    return Growth::Solved;
}

void updateBlockFromSums(GLMState& glm, const FMRProject& project, int volumeIndex, size_t position,
                         size_t first, size_t count) {
    const size_t p = size_t(glm.nrOfActivePredictors);
    double* sums = glm.growth.sums.data() + position * (p + 1);
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
