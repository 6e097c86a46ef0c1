// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/glm_contrasts.h"

#include "base/messages.h"
#include "base/program_end.h"
#include "stats/contrasts.h"
#include "stats/glm_kernels.h"
#include "stats/numerics/matrix_products.h"
#include "stats/statistical_maps.h"

#include <algorithm>

namespace {

/// False when a weight falls on a column that is not in the model. Confound columns always are, so
/// such a column belongs to a condition that has not started.
bool canBeEstimated(const std::vector<int>& weights, std::span<const int> activePredictors) {
    for (size_t column = 0; column < weights.size(); ++column)
        if (weights[column] != 0 && std::find(activePredictors.begin(), activePredictors.end(),
                                              int(column)) == activePredictors.end())
            return false;
    return true;
}

void limitStates(ContrastDefinitions& contrasts, std::span<const int> activePredictors) {
    contrasts.ActiveContrastStates = contrasts.ContrastSelectionStates;
    std::vector<int>& states = contrasts.ActiveContrastStates;
    states.resize(size_t(std::max(contrasts.NrOfContrasts, 0)), ContrastOff);
    for (size_t c = 0; c < states.size(); ++c)
        if (c >= contrasts.ContrastWeights.size() ||
            !canBeEstimated(contrasts.ContrastWeights[c], activePredictors))
            states[c] = ContrastOff;
}

} // namespace

bool allocateMissingMaps(const ContrastDefinitions& contrasts, const VolumeSize& size,
                         StatisticalMaps& maps) {
    const bool present = maps.size == size && maps.nrOfMaps >= contrasts.NrOfContrasts;
    if (present || maps.allocateMaps(contrasts.NrOfContrasts, size))
        return true;
    showCritical("ERROR: Not enough memory for contrast maps - terminating Cortivo...");
    endProgram(1);
    return false;
}

void refreshActiveContrasts(ActiveContrasts& active, ContrastDefinitions& contrasts,
                            StatisticalMaps& maps, std::span<const int> activePredictors) {
    limitStates(contrasts, activePredictors);
    active.nrOfPredictors = int(activePredictors.size());
    active.weights.clear();
    maps.states.clear();
    maps.contrastOfMap.clear();
    for (size_t c = 0; c < contrasts.ActiveContrastStates.size(); ++c) {
        const int state = contrasts.ActiveContrastStates[c];
        if (state <= ContrastOff || int(maps.states.size()) == maps.nrOfMaps)
            continue;
        maps.states.push_back(state);
        maps.contrastOfMap.push_back(int(c));
        const std::vector<int>& weights = contrasts.ContrastWeights[c];
        for (const int column : activePredictors)
            active.weights.push_back(
                size_t(column) < weights.size() ? float(weights[size_t(column)]) : 0.0f);
    }
    active.count = int(maps.states.size());
    active.variances.assign(maps.states.size(), 0.0f);
    maps.useMaps(active.count);
}

void computeContrastVariances(ActiveContrasts& active, std::span<const float> iXX) {
    const int p = active.nrOfPredictors;
    active.product.resize(size_t(p));
    for (int c = 0; c < active.count; ++c) {
        numerics::matVec(iXX, active.row(c), active.product, p, p);
        active.variances[size_t(c)] = numerics::dot(active.row(c), active.product);
    }
}

bool conjunctionApplies(const ContrastDefinitions& contrasts, const StatisticalMaps& maps) {
    return contrasts.ConjunctionAnalysis && maps.NrOfActiveContrasts >= 2;
}

void markConjunction(const ContrastDefinitions& contrasts, StatisticalMaps& maps) {
    if (conjunctionApplies(contrasts, maps) && !maps.states.empty())
        maps.states.front() = ContrastBoth;
}

void conjoinBlockMaps(const ActiveContrasts& active, size_t first, size_t count,
                      StatisticalMaps& maps) {
    for (int c = 1; c < active.count; ++c)
        conjoinMaps(maps.map(c).data() + first, count, maps.map(0).data() + first);
}

void computeBlockMaps(const ActiveContrasts& active, const BlockEstimates& estimates, size_t first,
                      size_t count, bool withConjunction, StatisticalMaps& maps) {
    for (int c = 0; c < active.count; ++c) {
        const ContrastTerms contrast{active.row(c), active.variances[size_t(c)]};
        computeTValues(contrast, estimates.betas, estimates.stride, estimates.variances, count,
                       maps.map(c).data() + first);
    }
    if (withConjunction)
        conjoinBlockMaps(active, first, count, maps);
}
