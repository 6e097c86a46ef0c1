// SPDX-License-Identifier: GPL-3.0-or-later
#include "regions/region_ranking.h"

#include "stats/numerics/sorting.h"

#include <algorithm>
#include <cmath>

namespace {

/// The betas of the model that the scores are made of.
struct ModelRows {
    std::vector<std::span<const double>> conditions;
    std::vector<int> columns; ///< of the design, for each of them
    std::span<const double> constant;

    ModelRows(const GLMState& glm, const DesignMatrix& design) {
        for (size_t j = 0; j < glm.ActivePredictors.size(); ++j) {
            if (glm.ActivePredictors[j] < design.NrOfConditionPredictors) {
                columns.push_back(glm.ActivePredictors[j]);
                conditions.push_back(glm.row(int(j)));
            } else if (constant.empty()) {
                constant = glm.row(int(j));
            }
        }
    }
};

/// Largest magnitude of the betas plus the sum of their distances from their mean.
double spread(const std::vector<std::span<const double>>& rows, size_t voxel) {
    double sum = 0.0;
    double largest = 0.0;
    for (const std::span<const double>& row : rows) {
        sum += row[voxel];
        largest = std::max(largest, std::fabs(row[voxel]));
    }
    const double mean = sum / double(rows.size());
    double score = largest;
    for (const std::span<const double>& row : rows)
        score += std::fabs(row[voxel] - mean);
    return score;
}

std::vector<int> ranking(const RegionOfInterest& region,
                         const std::vector<std::span<const double>>& conditions,
                         std::span<const double> constant, const VolumeSize& size) {
    std::vector<float> scores(region.voxels.size());
    for (size_t i = 0; i < scores.size(); ++i) {
        const size_t voxel = region.voxels.offset(i, size);
        const double base = constant.empty() || constant[voxel] == 0.0 ? 1.0 : constant[voxel];
        const double response = region.TopVoxelSelectionMode == allPredictors
                                    ? spread(conditions, voxel)
                                    : conditions.front()[voxel];
        scores[i] = float(response / base);
    }
    std::vector<int> order = numerics::indexx(scores);
    std::ranges::reverse(order);
    return order;
}

} // namespace

void rankROIVoxels(Regions& regions, const GLMState& glm, const DesignMatrix& design,
                   const VolumeSize& size) {
    const ModelRows model(glm, design);
    if (model.conditions.empty() || glm.nrOfVoxels != size.samples())
        return;
    for (int i = 0; i < regions.count(); ++i) {
        RegionOfInterest& region = regions[i];
        region.SortedVoxelList.clear();
        if (!(region.TopVoxelRatio < 1.0f) || region.NrOfVoxels() < 2)
            continue;
        if (region.TopVoxelSelectionMode == allPredictors) {
            region.SortedVoxelList = ranking(region, model.conditions, model.constant, size);
            continue;
        }
        const auto column = std::ranges::find(model.columns, region.TopVoxelSelectionMode);
        if (column != model.columns.end())
            region.SortedVoxelList =
                ranking(region, {model.conditions[size_t(column - model.columns.begin())]},
                        model.constant, size);
    }
}
