// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/finished_model.h"

#include "base/messages.h"
#include "stats/glm_blocks.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace {

enum Row { correlationRow = 0, totalRow = 1, firstBetaRow = 2 };

bool stateIsUsable(const GLMState& glm, const FMRProject& project, const BrainMask& mask,
                   int nrOfVolumes) {
    return glm.GLMStartVolume != GLMState::notStarted && nrOfVolumes > glm.GLMStartVolume &&
           mask.voxels.size() == glm.nrOfVoxels && project.volumeSamples() == glm.nrOfVoxels &&
           volumesHaveSize(project, nrOfVolumes, glm.nrOfVoxels);
}

void finishBlock(FinishedModel& model, const GLMState& glm, std::span<const int16_t* const> samples,
                 size_t first, size_t count) {
    std::array<double, glmBlockVoxels> totals;
    computeTotalSumsOfSquares(samples, count, totals.data());
    const int p = model.nrOfActivePredictors;
    for (size_t v = 0; v < count; ++v) {
        const double explained = totals[v] - glm.row(p)[first + v];
        const bool explains = totals[v] > 0.0 && explained > 0.0;
        const double squaredCorrelation = explains ? std::min(explained / totals[v], 1.0) : 0.0;
        model.row(correlationRow)[first + v] = float(std::sqrt(squaredCorrelation));
        model.row(totalRow)[first + v] = float(totals[v]);
    }
    for (int j = 0; j < p; ++j)
        std::copy_n(glm.row(j).begin() + ptrdiff_t(first), count,
                    model.row(firstBetaRow + j).begin() + ptrdiff_t(first));
}

void computeVariances(const FinishedModel& model, size_t first, size_t count, float* variances) {
    const float degreesOfFreedom = float(model.NrOfVolumes - model.nrOfActivePredictors);
    for (size_t v = 0; v < count; ++v) {
        const float r = model.row(correlationRow)[first + v];
        const float total = model.row(totalRow)[first + v];
        // A variance of 0 makes t 0.
        variances[v] = r > 0.0f ? (total - total * r * r) / degreesOfFreedom : 0.0f;
    }
}

} // namespace

bool FinishedModel::isValid() const {
    const size_t p = size_t(std::max(nrOfActivePredictors, 0));
    return p > 0 && ActivePredictors.size() == p && iXX.size() == p * p &&
           GLMMaps.size() >= (p + firstBetaRow) * nrOfVoxels();
}

void FinishedModel::release() {
    *this = FinishedModel{};
}

bool finishModel(FinishedModel& model, const GLMState& glm, const FMRProject& project,
                 const BrainMask& mask, int nrOfVolumes) {
    model.release();
    if (!stateIsUsable(glm, project, mask, nrOfVolumes))
        return false;
    const size_t rows = size_t(glm.nrOfActivePredictors) + firstBetaRow;
    if (!model.GLMMaps.allocate(rows * glm.nrOfVoxels)) {
        showCritical("ERROR: Insufficient memory for creating GLM data structure!");
        return false;
    }
    model.size = project.size();
    model.nrOfActivePredictors = glm.nrOfActivePredictors;
    model.NrOfVolumes = nrOfVolumes;
    model.ActivePredictors = glm.ActivePredictors;
    model.iXX.assign(glm.iXX.begin(), glm.iXX.end());
    forEachBlockOverTime(mask, project, nrOfVolumes,
                         [&](const auto& samples, size_t first, size_t count) {
                             finishBlock(model, glm, samples, first, count);
                         });
    return true;
}

bool computeContrastMaps(const FinishedModel& model, const BrainMask& mask,
                         ContrastDefinitions& contrasts, StatisticalMaps& maps) {
    if (!model.isValid() || mask.voxels.size() != model.nrOfVoxels())
        return false;
    if (!allocateMissingMaps(contrasts, model.size, maps))
        return false;
    ActiveContrasts active;
    refreshActiveContrasts(active, contrasts, maps, model.ActivePredictors);
    markConjunction(contrasts, maps);
    computeContrastVariances(active, model.iXX);
    for (int c = 0; c < active.count; ++c)
        std::ranges::fill(maps.map(c), 0.0f);
    const bool withConjunction = conjunctionApplies(contrasts, maps);
    std::array<float, glmBlockVoxels> variances;
    forEachBlock(mask, [&](size_t first, size_t count) {
        computeVariances(model, first, count, variances.data());
        const BlockEstimates estimates{model.row(firstBetaRow).data() + first, model.nrOfVoxels(),
                                       variances.data()};
        computeBlockMaps(active, estimates, first, count, withConjunction, maps);
    });
    maps.MapType = MapKind::T;
    maps.MapDF1 = std::max(model.NrOfVolumes - model.nrOfActivePredictors, 0);
    maps.MapDF2 = 0;
    return true;
}
