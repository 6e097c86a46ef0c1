// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/whole_run_maps.h"

#include "stats/design_rank.h"
#include "stats/glm_blocks.h"
#include "stats/glm_contrasts.h"
#include "stats/numerics/linear_systems.h"
#include "stats/restricted_model.h"

#include <array>

namespace {

/// What is computed in each voxel.
struct MapPlan {
    ActiveContrasts active;
    int nrOfBins = 1;
    std::vector<float> contrastVariances;     ///< of t maps: contrast by contrast, for each bin
    std::vector<ModelComparison> comparisons; ///< of F maps: one for each map
    bool conjunction = false;
    bool oneSided = false;
};

bool columnIsEmpty(const WholeRunDesign& design, size_t column) {
    const size_t p = design.predictors.size();
    for (size_t at = column; at < design.GLMDesign.size(); at += p)
        if (design.GLMDesign[at] != 0.0f)
            return false;
    return true;
}

/// For each column the condition that gives its weight; -1 for confounds, and for a condition that
/// does not occur in the studies of the column.
std::vector<int> conditionsPresent(const WholeRunDesign& design) {
    std::vector<int> conditions = design.conditionOfColumn;
    for (size_t column = 0; column < conditions.size(); ++column)
        if (columnIsEmpty(design, column))
            conditions[column] = -1;
    return conditions;
}

/// For each column the study or subject that it is separate for, from 0: conditions come in the
/// same order in each of them.
std::vector<int> groupsOfColumns(const WholeRunDesign& design) {
    const std::vector<int>& conditions = design.conditionOfColumn;
    std::vector<int> groups;
    for (auto column = conditions.begin(); column != conditions.end(); ++column)
        groups.push_back(*column < 0 ? -1 : int(std::count(conditions.begin(), column, *column)));
    return groups;
}

/// Where a study or subject lacks one of the conditions of a contrast, its other columns would make
/// it another contrast: it gets no weights there.
void balanceGroups(ActiveContrasts& active, const WholeRunDesign& design,
                   const ContrastDefinitions& contrasts, const StatisticalMaps& maps) {
    const std::vector<int> present = conditionsPresent(design);
    const std::vector<int> groups = groupsOfColumns(design);
    const size_t p = present.size();
    for (size_t c = 0; c < size_t(active.count); ++c) {
        const std::vector<int>& weights = contrasts.ContrastWeights[size_t(maps.contrastOfMap[c])];
        for (size_t missing = 0; missing < p; ++missing) {
            const int condition = design.conditionOfColumn[missing];
            if (condition < 0 || present[missing] >= 0 || size_t(condition) >= weights.size() ||
                weights[size_t(condition)] == 0)
                continue;
            for (size_t column = 0; column < p; ++column)
                if (groups[column] == groups[missing])
                    active.weights[c * p + column] = 0.0f;
        }
    }
}

std::span<const float> inverseOfBin(const WholeRunModel& model, int bin) {
    return model.CorrectSerialCorrelations ? model.binInverses[size_t(bin)] : model.GLMInverse;
}

/// Of a design whose columns depend on each other: a contrast that the data don't determine gets a
/// variance of 0, and with it a map of 0, as in the live model.
void withdrawInestimable(MapPlan& plan, const WholeRunModel& model) {
    const std::vector<double> xx = normalMatrix(model.GLMDesign, model.predictors.size());
    numerics::NormalInverse normal;
    if (!numerics::invertNormalMatrix(xx, model.GLMPredictors(), normal))
        return;
    const size_t bins = size_t(plan.nrOfBins);
    for (int c = 0; c < plan.active.count; ++c)
        if (!isEstimable(plan.active.row(c), xx, normal.inverse))
            std::fill_n(plan.contrastVariances.begin() + ptrdiff_t(size_t(c) * bins), bins, 0.0f);
}

void planTMaps(MapPlan& plan, const WholeRunModel& model) {
    const size_t bins = size_t(plan.nrOfBins);
    plan.contrastVariances.resize(size_t(plan.active.count) * bins);
    for (size_t bin = 0; bin < bins; ++bin) {
        computeContrastVariances(plan.active, inverseOfBin(model, int(bin)));
        for (size_t c = 0; c < size_t(plan.active.count); ++c)
            plan.contrastVariances[c * bins + bin] = plan.active.variances[c];
    }
    if (model.rank < model.GLMPredictors())
        withdrawInestimable(plan, model);
}

/// Weights of one sign: each of their betas is 0 in the restricted model. Of both signs: their
/// weighted sum is.
void appendRestrictions(std::span<const float> weights, std::vector<float>& restrictions) {
    const bool positive = std::ranges::any_of(weights, [](float weight) { return weight > 0.0f; });
    const bool negative = std::ranges::any_of(weights, [](float weight) { return weight < 0.0f; });
    if (positive && negative) {
        restrictions.insert(restrictions.end(), weights.begin(), weights.end());
        return;
    }
    for (size_t column = 0; column < weights.size(); ++column)
        if (weights[column] != 0.0f) {
            restrictions.resize(restrictions.size() + weights.size(), 0.0f);
            restrictions[restrictions.size() - weights.size() + column] = 1.0f;
        }
}

/// False when a decomposition fails, which ends the program.
bool planFMaps(MapPlan& plan, const WholeRunModel& model, bool allInOne) {
    std::vector<float> restrictions;
    for (int c = 0; c < plan.active.count; ++c) {
        appendRestrictions(plan.active.row(c), restrictions);
        if (allInOne && c + 1 < plan.active.count)
            continue;
        if (!compareWithRestricted(model, restrictions, plan.comparisons.emplace_back()))
            return false;
        restrictions.clear();
    }
    return true;
}

/// F has no sign: it is shown where it is large, whatever values a contrast shows.
void describeFMaps(const MapPlan& plan, StatisticalMaps& maps) {
    const size_t count = plan.comparisons.size();
    maps.useMaps(int(count));
    maps.states.assign(count, ContrastPositive);
    maps.contrastOfMap.resize(count);
    if (maps.MapDF1 < 1 || count == 0)
        return;
    maps.MapType = MapKind::F;
    maps.MapDF2 = maps.MapDF1;
    maps.MapDF1 = plan.comparisons.front().nrOfRestrictions;
    for (const ModelComparison& comparison : plan.comparisons)
        if (comparison.nrOfRestrictions != maps.MapDF1)
            maps.MapDF1 = 0;
}

void computeBlock(const WholeRunModel& model, const MapPlan& plan, size_t first, size_t count,
                  StatisticalMaps& maps) {
    std::array<float, glmBlockVoxels> variances;
    std::array<int, glmBlockVoxels> bins{};
    computeResidualVariances(model.row(GLMMapRows::correlation).data() + first,
                             model.row(GLMMapRows::total).data() + first,
                             float(model.degreesOfFreedom()), count, variances.data());
    if (model.CorrectSerialCorrelations)
        std::transform(model.row(model.rows().AR1Before()).begin() + ptrdiff_t(first),
                       model.row(model.rows().AR1Before()).begin() + ptrdiff_t(first + count),
                       bins.begin(), serialCorrelationBin);
    const FittedBlock block{model.row(GLMMapRows::firstBeta).data() + first, model.nrOfVoxels(),
                            variances.data(), bins.data(), count};
    const ActiveContrasts& active = plan.active;
    const bool t = plan.comparisons.empty();
    for (int map = 0; map < maps.NrOfActiveContrasts; ++map) {
        float* values = maps.map(map).data() + first;
        if (t)
            computeTValuesOfBins(active.row(map),
                                 std::span(plan.contrastVariances)
                                     .subspan(size_t(map * plan.nrOfBins), size_t(plan.nrOfBins)),
                                 block, values);
        else
            computeFValues(plan.comparisons[size_t(map)].forms, block, values);
        // One F map stands for all contrasts.
        const int last = maps.NrOfActiveContrasts < active.count ? active.count : map + 1;
        for (int c = map; plan.oneSided && c < last; ++c)
            keepAgreeingSigns(active.row(c), block, values);
    }
    if (plan.conjunction)
        conjoinBlockMaps(active, first, count, maps);
}

} // namespace

bool computeContrastMaps(const WholeRunModel& model, const BrainMask& mask,
                         ContrastDefinitions& contrasts, StatisticalMaps& maps,
                         WorkerPool& workers) {
    if (!model.isValid() || mask.voxels.size() != model.nrOfVoxels() ||
        model.conditionOfColumn.size() != model.predictors.size())
        return false;
    if (!allocateMissingMaps(contrasts, model.size, maps))
        return false;
    MapPlan plan;
    plan.nrOfBins = model.CorrectSerialCorrelations ? nrOfSerialCorrelationBins : 1;
    plan.oneSided = contrasts.oneSidedTesting;
    refreshActiveContrasts(plan.active, contrasts, maps, conditionsPresent(model));
    balanceGroups(plan.active, model, contrasts, maps);
    maps.MapType = MapKind::T;
    maps.MapDF1 = model.degreesOfFreedom();
    maps.MapDF2 = 0;
    if (contrasts.shownStatistic == ShownStatistic::T) {
        markConjunction(contrasts, maps);
        plan.conjunction = conjunctionApplies(contrasts, maps);
        planTMaps(plan, model);
    } else {
        if (!planFMaps(plan, model, contrasts.shownStatistic == ShownStatistic::FOfSelected))
            return false;
        describeFMaps(plan, maps);
    }
    for (int map = 0; map < maps.NrOfActiveContrasts; ++map)
        std::ranges::fill(maps.map(map), 0.0f);
    forEachBlock(mask, workers, [&](const MaskBlock& block, size_t) {
        computeBlock(model, plan, block.first, block.count, maps);
    });
    return true;
}
