// SPDX-License-Identifier: GPL-3.0-or-later
#include "regions/region_betas.h"

#include "stats/glm_batch.h"
#include "stats/glm_kernels.h"
#include "stats/numerics/matrix_products.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace {

constexpr float smallestScale = 0.01f; ///< constants below it give no percentage

/// The model of the first `batch.n` volumes.
struct RegionModel {
    std::vector<int> columns;
    BatchDesign batch;
};

std::vector<int> columnsAt(const DesignMatrix& design, int volumeIndex) {
    if (!design.PredictorOnsets.empty())
        return activePredictorsAt(design, volumeIndex);
    std::vector<int> all(size_t(design.NrOfPredictors));
    std::iota(all.begin(), all.end(), 0);
    return all;
}

/// Prepares the model for this number of volumes. False when there is none to fit.
bool prepareModel(RegionModel& model, const DesignMatrix& design, int nrOfVolumes) {
    if (nrOfVolumes < 1)
        return false;
    if (model.batch.n == nrOfVolumes)
        return true;
    model.columns = columnsAt(design, nrOfVolumes - 1);
    model.batch.n = 0;
    return model.columns.size() >= 2 &&
           makeBatchDesign(model.batch, design, model.columns, nrOfVolumes);
}

std::vector<float> solvedBetas(const BatchDesign& batch, std::span<const float> values) {
    const auto p = size_t(batch.p);
    std::vector<float> xy(p);
    for (size_t t = 0; t < size_t(batch.n); ++t)
        for (size_t j = 0; j < p; ++j)
            xy[j] += batch.x[t * p + j] * values[t];
    std::vector<float> betas(p);
    numerics::matVec(batch.inverse, xy, betas, batch.p, batch.p);
    return betas;
}

float varianceOfResiduals(const BatchDesign& batch, std::span<const float> betas,
                          std::span<const float> values) {
    const auto p = size_t(batch.p);
    if (batch.n <= batch.p)
        return 0.0f;
    double sum = 0.0;
    double squareSum = 0.0;
    for (size_t t = 0; t < size_t(batch.n); ++t) {
        double residual = double(values[t]);
        for (size_t j = 0; j < p; ++j)
            residual -= double(batch.x[t * p + j] * betas[j]);
        sum += residual;
        squareSum += residual * residual;
    }
    return float((squareSum - sum * sum / batch.n) / (batch.n - batch.p));
}

void setUnfitted(RegionOfInterest& region, const DesignMatrix& design) {
    region.ROIBetas.assign(size_t(design.NrOfPredictors), 0.0f);
    if (design.NrOfConditionPredictors < design.NrOfPredictors)
        region.ROIBetas[size_t(design.NrOfConditionPredictors)] = 1.0f;
    region.BetaCovariance.clear();
    region.residualVariance = 0.0f;
    region.predictorsInFit = 0;
}

void turnIntoPercent(std::span<float> betas, int nrOfConditions) {
    const float constant = betas[size_t(nrOfConditions)];
    if (std::abs(constant) > smallestScale)
        for (float& beta : betas.first(size_t(nrOfConditions)))
            beta = beta / constant * 100.0f;
}

void fit(RegionOfInterest& region, const DesignMatrix& design, const RegionModel& model) {
    const auto all = size_t(design.NrOfPredictors);
    const auto p = model.columns.size();
    const std::vector<float> betas = solvedBetas(model.batch, region.TimeCourseValues);
    region.residualVariance = varianceOfResiduals(model.batch, betas, region.TimeCourseValues);
    region.ROIBetas.assign(all, 0.0f);
    region.BetaCovariance.assign(all * all, 0.0);
    for (size_t i = 0; i < p; ++i) {
        const auto row = size_t(model.columns[i]);
        region.ROIBetas[row] = betas[i];
        for (size_t j = 0; j < p; ++j)
            region.BetaCovariance[row * all + size_t(model.columns[j])] =
                double(model.batch.inverse[i * p + j]);
    }
    region.predictorsInFit = int(p);
    if (design.NrOfConditionPredictors < design.NrOfPredictors)
        turnIntoPercent(region.ROIBetas, design.NrOfConditionPredictors);
}

void fitOrNot(RegionOfInterest& region, const DesignMatrix& design, bool modelStarted,
              RegionModel& model) {
    const int n = std::min(region.CurrentTimePoint + 1, region.NrOfValues());
    if (modelStarted && prepareModel(model, design, n))
        fit(region, design, model);
    else
        setUnfitted(region, design);
}

} // namespace

void computeROIBetas(Regions& regions, const DesignMatrix& design, bool modelStarted) {
    const auto isEmpty = [](const std::vector<float>& column) { return column.empty(); };
    if (std::ranges::all_of(design.PredictorColumns, isEmpty))
        return;
    RegionModel model;
    for (int r = 0; r < regions.count(); ++r)
        fitOrNot(regions[r], design, modelStarted, model);
}

void computeROIBetas(RegionOfInterest& region, const DesignMatrix& design) {
    RegionModel model;
    fitOrNot(region, design, true, model);
}
