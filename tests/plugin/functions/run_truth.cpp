// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/functions/run_truth.h"

#include "run/loop/session_fixture.h"

namespace {

constexpr int volumes = 40;
constexpr size_t conditions = 2;
constexpr int firstSolution = 11;
constexpr double unwritten = -77;
constexpr int size[] = {8, 8, 4};
constexpr int defaultSize[] = {64, 64, 16}; ///< of a document that is still empty
/// Those whose arrays the probe reads.
constexpr int places[5][3] = {{0, 0, 1}, {7, 7, 2}, {3, 4, 1}, {0, 0, 0}, {7, 7, 3}};

bool isIn(int value, int end) {
    return value >= 0 && value < end;
}

bool isVoxel(int x, int y, int z) {
    return isIn(x, 8) && isIn(y, 8) && isIn(z, 4);
}

size_t offsetOf(int x, int y, int z) {
    return size_t(64 * z + 8 * y + x);
}

size_t offsetOfPlace(int place) {
    return offsetOf(places[place][0], places[place][1], places[place][2]);
}

/// The mask of the brain leaves out the first and the last slice.
bool isModelled(size_t voxel) {
    return voxel >= 64 && voxel < 192;
}

int conditionAt(int volume) {
    return isIn(volume - 4, 4) ? 1 : isIn(volume - 20, 6) ? 2 : 0;
}

/// By Gauss and Jordan; the matrix must have an inverse.
std::vector<double> inverted(std::vector<double> a, size_t n) {
    std::vector<double> inverse(n * n, 0.0);
    for (size_t i = 0; i < n; ++i)
        inverse[i * n + i] = 1.0;
    for (size_t i = 0; i < n; ++i) {
        const double pivot = a[i * n + i];
        for (size_t j = 0; j < n; ++j) {
            a[i * n + j] /= pivot;
            inverse[i * n + j] /= pivot;
        }
        for (size_t row = 0; row < n; ++row) {
            const double factor = row == i ? 0.0 : a[row * n + i];
            for (size_t j = 0; j < n; ++j) {
                a[row * n + j] -= factor * a[i * n + j];
                inverse[row * n + j] -= factor * inverse[i * n + j];
            }
        }
    }
    return inverse;
}

} // namespace

RunTruth::Fit RunTruth::fit(int last, const std::function<double(int)>& curve) const {
    Fit fit;
    for (size_t j = 0; j < design_.size(); ++j)
        if (j >= conditions || std::any_of(design_[j].begin(), design_[j].begin() + last + 1,
                                           [](double value) { return std::abs(value) > 0.1; }))
            fit.columns.push_back(j);
    const size_t p = fit.columns.size();
    std::vector<double> xx(p * p), xy(p);
    for (int t = 0; t <= last; ++t)
        for (size_t i = 0; i < p; ++i) {
            const double x = design_[fit.columns[i]][size_t(t)];
            xy[i] += x * curve(t);
            for (size_t j = 0; j < p; ++j)
                xx[i * p + j] += x * design_[fit.columns[j]][size_t(t)];
        }
    fit.inverse = inverted(xx, p);
    fit.betas.assign(p, 0.0);
    for (size_t i = 0; i < p * p; ++i)
        fit.betas[i / p] += fit.inverse[i] * xy[i % p];
    for (int t = 0; t <= last; ++t) {
        double residual = curve(t);
        for (size_t i = 0; i < p; ++i)
            residual -= fit.betas[i] * design_[fit.columns[i]][size_t(t)];
        fit.variance += residual * residual / (last + 1 - int(p));
    }
    return fit;
}

RunTruth::Fit RunTruth::fitVoxel(int last, size_t voxel) const {
    return fit(last, [voxel](int t) { return double(scriptedSample(voxel, t)); });
}

double RunTruth::regionMean(int volume) const {
    double sum = 0.0;
    for (int y = 3; y < 6; ++y)
        for (int x = 2; x < 4; ++x)
            sum += scriptedSample(offsetOf(x, y, 1), volume);
    return sum / 6;
}

// Its model begins with the volume after the first solution of the voxels.
double RunTruth::regionBeta(const Moment& moment, int predictor) const {
    if (moment.curves <= firstSolution)
        return predictor == int(conditions);
    const Fit region = fit(moment.curves, [this](int t) { return regionMean(t); });
    const auto at = std::ranges::find(region.columns, size_t(predictor));
    return at == region.columns.end() ? 0.0 : region.betas[size_t(at - region.columns.begin())];
}

double RunTruth::voxelBeta(const Moment& moment, int predictor, size_t voxel) const {
    if (!moment.active || moment.modelled < firstSolution || predictor < 0)
        return 0.0;
    const Fit voxelFit = fitVoxel(moment.modelled, voxel);
    const bool known = isModelled(voxel) && size_t(predictor) < voxelFit.betas.size();
    return known ? voxelFit.betas[size_t(predictor)] : 0.0;
}

// The contrasts in use are each condition against the baseline.
double RunTruth::mapValue(const Moment& moment, int contrast, size_t voxel) const {
    if (moment.modelled < firstSolution || !isIn(contrast, conditions) || !isModelled(voxel))
        return 0.0;
    const Fit voxelFit = fitVoxel(moment.modelled, voxel);
    const size_t p = voxelFit.columns.size(), column = size_t(contrast);
    if (voxelFit.columns[column] != column)
        return 0.0;
    return voxelFit.betas[column] /
           std::sqrt(voxelFit.variance * voxelFit.inverse[column * p + column]);
}

double RunTruth::region(const Moment& moment, const QString& name,
                        const std::vector<int>& a) const {
    const bool exists = isIn(a[0], moment.regions);
    if (name == "tGetNrOfVoxelsOfROI")
        return exists ? 6 : -1;
    if (name == "tGetCoordsOfVoxelOfROI")
        return exists && isIn(a[1], 6) ? 100 * (2 + a[1] % 2) + 10 * (3 + a[1] / 2) + 1
                                       : 3 * unwritten;
    if (name == "tGetMeanOfROI")
        return exists && moment.curves >= std::min(moment.volume, volumes - 1)
                   ? regionMean(moment.curves)
                   : 0.0;
    return exists && isIn(a[1], int(design_.size())) ? regionBeta(moment, a[1]) : 0.0;
}

double RunTruth::number(const Moment& moment, const QString& name) const {
    const bool known = moment.document && moment.prepared;
    const bool measured = moment.document && moment.volume >= 0;
    const std::map<QString, double> numbers = {
        {"tGetExpectedNrOfTimePoints", known ? volumes : 0},
        {"tGetCurrentTimePoint", moment.document ? std::min(moment.volume + 1, volumes) : -1},
        {"tGetCurrentProtocolCondition",
         measured && moment.volume < volumes ? conditionAt(moment.volume) : -1},
        {"tGetFullNrOfPredictors", known ? int(design_.size()) : 0},
        {"tGetCurrentNrOfPredictors", moment.active && moment.modelled >= firstSolution
                                          ? int(fitVoxel(moment.modelled, 64).columns.size())
                                          : 0},
        {"tGetNrOfConfoundPredictors", known ? int(design_.size() - conditions) : 0},
        {"tGetNrOfContrasts", known ? 3 : 0},
        {"tGetNrOfROIs", moment.regions},
        {"tGetBetaMaps", moment.active},
        {"tGetTimeCourseData", known},
        {"tGetContrastMaps", measured},
        {"tGetPluginMaps", 0},
    };
    return numbers.at(name);
}

double RunTruth::answer(const Moment& moment, const QString& name,
                        const std::vector<int>& a) const {
    if (name == "tGetVersionOfVCO")
        return std::vector{3, 2, 5}[size_t(a[0])];
    if (name == "tGetDimsOfFunctionalData")
        return !moment.document ? unwritten : (moment.prepared ? size : defaultSize)[a[0]];
    if (name.contains("ROI") && !a.empty())
        return region(moment, name, a);
    if (name == "tGetValueOfDesignMatrix" || name == "design")
        return moment.active && isIn(a[0], int(design_.size())) && isIn(a[1], moment.volume + 1)
                   ? design_[size_t(a[0])][size_t(a[1])]
                   : 0.0;
    if (name == "tGetValueOfVoxelAtTime")
        return moment.document && isVoxel(a[0], a[1], a[2]) &&
                       isIn(a[3], std::min(moment.volume + 1, volumes))
                   ? scriptedSample(offsetOf(a[0], a[1], a[2]), a[3])
                   : 0.0;
    if (name == "samples")
        return a[0] <= moment.volume ? scriptedSample(offsetOfPlace(a[1]), a[0]) : 0.0;
    if (name == "tGetBetaOfVoxel")
        return isVoxel(a[1], a[2], a[3]) ? voxelBeta(moment, a[0], offsetOf(a[1], a[2], a[3]))
                                         : 0.0;
    if (name == "betas")
        return voxelBeta(moment, a[0], offsetOfPlace(a[1]));
    if (name == "tGetMapValueOfVoxel")
        return isVoxel(a[1], a[2], a[3]) ? mapValue(moment, a[0], offsetOf(a[1], a[2], a[3])) : 0.0;
    if (name == "maps")
        return mapValue(moment, a[0], offsetOfPlace(a[1]));
    return number(moment, name);
}
