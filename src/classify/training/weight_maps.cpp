// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/training/weight_maps.h"

#include "base/messages.h"
#include "base/program_end.h"

#include <array>
#include <numeric>

namespace {

RgbColor colorOfRow(int row) {
    constexpr std::array<RgbColor, 8> colors{{{255, 0, 0},
                                              {0, 255, 0},
                                              {0, 0, 255},
                                              {255, 255, 0},
                                              {255, 0, 255},
                                              {0, 255, 255},
                                              {255, 128, 0},
                                              {255, 255, 255}}};
    return colors[size_t(row) % colors.size()];
}

ContrastDefinitions contrastsOf(const QStringList& names, const std::vector<int>& rows) {
    ContrastDefinitions contrasts;
    contrasts.NrOfContrasts = int(rows.size());
    contrasts.ContrastValues.resize(rows.size());
    contrasts.ContrastWeights.resize(rows.size());
    for (const int row : rows) {
        contrasts.ContrastNames << names[row];
        contrasts.ContrastColors.push_back(colorOfRow(row));
        const bool shown = contrasts.ContrastNames.size() <= ContrastDefinitions::maximumShownMaps;
        contrasts.ContrastSelectionStates.push_back(shown ? ContrastBoth : ContrastOff);
    }
    contrasts.ActiveContrastStates = contrasts.ContrastSelectionStates;
    return contrasts;
}

QStringList mapNames(const std::vector<SVMWeights>& weights) {
    if (weights.size() == 1)
        return {"SVM Weights"};
    QStringList names;
    for (const SVMWeights& row : weights)
        names << QStringLiteral("SVM Pref Weights, Class %1").arg(row.label);
    return names;
}

/// One row, or with allMaps all of them. False, without maps, when memory runs out.
bool putMaps(QtCortivoDoc& document, const std::vector<SVMWeights>& weights,
             const VoxelList& voxels, int row) {
    std::vector<int> rows(row == WeightMaps::allMaps ? weights.size() : 1, row);
    if (row == WeightMaps::allMaps)
        std::iota(rows.begin(), rows.end(), 0);
    StatisticalMaps& maps = document.maps;
    document.contrasts.clear();
    if (!maps.allocateMaps(int(rows.size()), document.project.size()))
        return false;
    document.contrasts = contrastsOf(mapNames(weights), rows);
    for (size_t i = 0; i < rows.size(); ++i)
        for (size_t voxel = 0; voxel < voxels.size(); ++voxel)
            maps.map(int(i))[voxels.offset(voxel, maps.size)] =
                float(weights[size_t(rows[i])].values[voxel]);
    maps.NrOfActiveContrasts = int(rows.size());
    maps.states.assign(rows.size(), ContrastBoth);
    maps.contrastOfMap.resize(rows.size());
    std::iota(maps.contrastOfMap.begin(), maps.contrastOfMap.end(), 0);
    maps.NrOfShownMaps = maps.nrOfMapsToShow(false);
    document.updateOverlayColors();
    return true;
}

} // namespace

// Many features share the work of a classifier: weights of a large region may all be tiny.
OverlayThresholds weightThresholds(const std::vector<SVMWeights>& weights) {
    OverlayThresholds thresholds;
    thresholds.Threshold = 0.01f;
    thresholds.ClusterSizePixels = 1;
    float largest = 0.0f;
    for (const SVMWeights& row : weights)
        for (const double value : row.values)
            largest = std::max(largest, std::fabs(float(value)));
    if (largest > 0.0f && largest < thresholds.Threshold)
        thresholds.Threshold = largest / 10.0f;
    changeColorMaxThreshold(thresholds, largest);
    return thresholds;
}

void changeWeightThreshold(OverlayThresholds& thresholds, float value) {
    thresholds.Threshold = std::max(value, smallestWeightThreshold);
    changeStrongestWeight(thresholds, thresholds.ColorMaxThreshold);
}

void changeStrongestWeight(OverlayThresholds& thresholds, float value) {
    thresholds.ColorMaxThreshold =
        value > thresholds.Threshold ? value : 2.0f * thresholds.Threshold;
}

void WeightMaps::setDocument(std::unique_ptr<QtCortivoDoc> document) {
    clear();
    document_ = std::move(document);
}

void WeightMaps::clear() {
    weights_.clear();
    if (!document_)
        return;
    display_.mapsLeaving();
    document_->contrasts.clear();
    static_cast<void>(document_->maps.allocateMaps(0, document_->project.size()));
}

void WeightMaps::show(std::vector<SVMWeights> weights, VoxelList voxels) {
    weights_ = std::move(weights);
    voxels_ = std::move(voxels);
    thresholds = weightThresholds(weights_);
    select(allMaps);
}

QStringList WeightMaps::names() const {
    return mapNames(weights_);
}

void WeightMaps::select(int map) {
    if (!document_ || weights_.empty() || map < allMaps || map >= int(weights_.size()))
        return;
    if (!putMaps(*document_, weights_, voxels_, map)) {
        showCritical("ERROR: Not enough memory for contrast maps - terminating Cortivo...");
        endProgram(1);
        return;
    }
    display_.showMaps();
}
