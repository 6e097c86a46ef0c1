// SPDX-License-Identifier: GPL-3.0-or-later
#include "regions/region_betas.h"

#include "stats/design_rank.h"
#include "stats/glm_batch.h"
#include "stats/glm_kernels.h"
#include "stats/numerics/linear_systems.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace {

constexpr float smallestScale = 0.01f; ///< constants below it give no percentage

/// The model of the first `batch.n` volumes.
struct RegionModel {
    std::vector<int> columns;
    BatchDesign batch;
    int rank = 0;
    /// In double, where the inverse in float has dropped directions of slow drift terms; else
    /// empty.
    std::vector<double> inverse;
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
    model.inverse.clear();
    if (model.columns.size() < 2 ||
        !makeBatchDesign(model.batch, design, model.columns, nrOfVolumes))
        return false;
    model.rank = model.batch.rank;
    if (model.rank == model.batch.p)
        return true;
    numerics::NormalInverse normal;
    if (!numerics::invertNormalMatrix(normalMatrix(model.batch.x, model.columns.size()),
                                      model.batch.p, normal))
        return false;
    model.rank = normal.rank;
    model.inverse = std::move(normal.inverse);
    return true;
}

/// Sums and products in this type.
template<typename Number>
std::vector<double> solvedBetas(const BatchDesign& batch, const std::vector<Number>& inverse,
                                std::span<const float> values) {
    const auto p = size_t(batch.p);
    std::vector<Number> xy(p);
    for (size_t t = 0; t < size_t(batch.n); ++t)
        for (size_t j = 0; j < p; ++j)
            xy[j] += Number(batch.x[t * p + j]) * Number(values[t]);
    std::vector<double> betas(p);
    for (size_t i = 0; i < p; ++i) {
        Number sum = 0;
        for (size_t j = 0; j < p; ++j)
            sum += inverse[i * p + j] * xy[j];
        betas[i] = double(sum);
    }
    return betas;
}

float varianceOfResiduals(const RegionModel& model, std::span<const double> betas,
                          std::span<const float> values) {
    const BatchDesign& batch = model.batch;
    const auto p = size_t(batch.p);
    if (batch.n <= model.rank)
        return 0.0f;
    double sum = 0.0;
    double squareSum = 0.0;
    for (size_t t = 0; t < size_t(batch.n); ++t) {
        double residual = double(values[t]);
        for (size_t j = 0; j < p; ++j)
            residual -= model.inverse.empty() ? double(batch.x[t * p + j] * float(betas[j]))
                                              : double(batch.x[t * p + j]) * betas[j];
        sum += residual;
        squareSum += residual * residual;
    }
    return float((squareSum - sum * sum / batch.n) / (batch.n - model.rank));
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
    const bool inDouble = !model.inverse.empty();
    const std::span<const float> values = region.TimeCourseValues;
    const std::vector<double> betas = inDouble
                                          ? solvedBetas(model.batch, model.inverse, values)
                                          : solvedBetas(model.batch, model.batch.inverse, values);
    region.residualVariance = varianceOfResiduals(model, betas, values);
    region.ROIBetas.assign(all, 0.0f);
    region.BetaCovariance.assign(all * all, 0.0);
    for (size_t i = 0; i < p; ++i) {
        const auto row = size_t(model.columns[i]);
        region.ROIBetas[row] = float(betas[i]);
        for (size_t j = 0; j < p; ++j)
            region.BetaCovariance[row * all + size_t(model.columns[j])] =
                inDouble ? model.inverse[i * p + j] : double(model.batch.inverse[i * p + j]);
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
