// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/whole_run_equations.h"

#include "base/memory.h"
#include "base/messages.h"
#include "stats/numerics/linear_systems.h"
#include "stats/numerics/matrix_products.h"

#include <algorithm>
#include <cmath>

namespace {

/// Deviation of the fitted constant from 1 below which the columns contain it.
constexpr double constantTolerance = 1e-6;

/// A matrix in double, row by data point.
struct PointMatrix {
    size_t points = 0;
    std::vector<double> x;
};

PointMatrix designInDouble(const WholeRunDesign& design) {
    return {size_t(design.GLMDataPoints()), {design.GLMDesign.begin(), design.GLMDesign.end()}};
}

/// x(t) - a x(t-1) within each study, from its second point on.
PointMatrix whitenedDesign(const WholeRunDesign& design, double lagOneValue) {
    const size_t p = size_t(design.GLMPredictors());
    PointMatrix whitened;
    const float* row = design.GLMDesign.data();
    for (const GLMStudy& study : design.studies) {
        for (int t = 0; t < study.dataPoints; ++t, row += p) {
            if (t == 0)
                continue;
            for (size_t j = 0; j < p; ++j)
                whitened.x.push_back(double(row[j]) - lagOneValue * double((row - p)[j]));
            ++whitened.points;
        }
    }
    return whitened;
}

/// x'x, p x p.
std::vector<double> squared(const PointMatrix& matrix, size_t p) {
    std::vector<double> result(p * p, 0.0);
    numerics::t_intel_matrix_matrix_mult_d(matrix.x.data(), matrix.x.data(), result.data(), int(p),
                                           int(p), int(matrix.points), true, false);
    return result;
}

std::vector<double> columnSums(const PointMatrix& matrix, size_t p) {
    std::vector<double> sums(p, 0.0);
    for (size_t i = 0; i < matrix.x.size(); ++i)
        sums[i % p] += matrix.x[i];
    return sums;
}

/// `constant` is what a 1 in all samples becomes in these points.
bool makeNormalEquations(PointMatrix matrix, size_t p, double constant, NormalEquations& result) {
    numerics::NormalInverse inverse;
    if (!numerics::invertNormalMatrix(squared(matrix, p), int(p), inverse))
        return false;
    result.inverse = std::move(inverse.inverse);
    result.rank = inverse.rank;
    result.points = int(matrix.points);
    const std::vector<double> sums = columnSums(matrix, p);
    result.onesSums = sums;
    result.onesBetas.assign(p, 0.0);
    for (size_t i = 0; i < p; ++i) {
        result.onesSums[i] *= constant;
        for (size_t j = 0; j < p; ++j)
            result.onesBetas[i] += result.inverse[i * p + j] * constant * sums[j];
    }
    for (size_t i = 0; i < matrix.x.size(); ++i)
        matrix.x[i] -= sums[i % p] / double(matrix.points);
    result.centred = squared(matrix, p);
    return true;
}

bool makeBinEquations(const WholeRunDesign& design, int bin, NormalEquations& result) {
    const double value = valueOfSerialCorrelationBin(bin);
    return makeNormalEquations(whitenedDesign(design, value), size_t(design.GLMPredictors()),
                               1.0 - value, result);
}

bool columnsContainConstant(const PointMatrix& matrix, const std::vector<double>& onesBetas) {
    const size_t p = onesBetas.size();
    for (size_t t = 0; t < matrix.points; ++t) {
        double fitted = 0.0;
        for (size_t j = 0; j < p; ++j)
            fitted += matrix.x[t * p + j] * onesBetas[j];
        if (!(std::abs(fitted - 1.0) < constantTolerance))
            return false;
    }
    return true;
}

bool isCondition(const WholeRunDesign& design, size_t column) {
    return column < design.conditionOfColumn.size() && design.conditionOfColumn[column] >= 0;
}

/// The points at which a condition is not 0; all where there are none, or where no z transformation
/// asks for them.
std::vector<char> findScalingPoints(const WholeRunDesign& design, const StudyDesign& study) {
    std::vector<char> used(study.points, 0);
    for (size_t t = 0; t < study.points; ++t)
        for (size_t j = 0; j < study.columns.size(); ++j)
            if (isCondition(design, size_t(study.columns[j])) && study.rowOf(t)[j] != 0.0)
                used[t] = 1;
    if (design.transformation != ZTransformation::StudyModel || std::ranges::count(used, 1) == 0)
        used.assign(study.points, 1);
    return used;
}

/// Room for the design in double: whole, centred, by study and whitened, the last while it grows,
/// and for the matrices of all bins.
bool hasMemory(const WholeRunDesign& design) {
    constexpr size_t designs = 6;
    constexpr size_t squares = 4 + 2 * nrOfSerialCorrelationBins;
    const size_t p = design.predictors.size();
    if (memoryIsAvailable(designs * design.GLMDesign.size() + squares * p * p, sizeof(double)))
        return true;
    showCritical("ERROR: Insufficient memory for creating GLM data structure!");
    return false;
}

StudyDesign makeStudyDesign(const WholeRunDesign& design, size_t firstPoint, size_t points) {
    const size_t p = size_t(design.GLMPredictors());
    const float* x = design.GLMDesign.data() + firstPoint * p;
    StudyDesign study;
    study.firstPoint = firstPoint;
    study.points = points;
    for (size_t j = 0; j < p; ++j) {
        bool zeros = true;
        for (size_t t = 0; t < points && zeros; ++t)
            zeros = x[t * p + j] == 0.0f;
        if (!zeros)
            study.columns.push_back(int(j));
    }
    for (size_t t = 0; t < points; ++t)
        for (const int column : study.columns)
            study.x.push_back(double(x[t * p + size_t(column)]));
    study.scalingPoints = findScalingPoints(design, study);
    return study;
}

} // namespace

std::vector<double> whitenedNormalMatrix(const WholeRunDesign& design, double lagOneValue) {
    const size_t p = size_t(design.GLMPredictors());
    return squared(design.CorrectSerialCorrelations ? whitenedDesign(design, lagOneValue)
                                                    : designInDouble(design),
                   p);
}

std::vector<float> inFloat(const std::vector<double>& values) {
    std::vector<float> result(values.size());
    std::ranges::transform(values, result.begin(), [](double value) { return float(value); });
    return result;
}

bool isUsableDesign(const WholeRunDesign& design) {
    const bool studiesHavePoints =
        std::ranges::all_of(design.studies, [](const GLMStudy& s) { return s.dataPoints > 0; });
    const size_t p = design.predictors.size();
    if (!studiesHavePoints || design.studies.empty() || p == 0 ||
        design.GLMDesign.size() != size_t(design.GLMDataPoints()) * p) {
        showCritical("ERROR: Wrong size of filled design matrix elements");
        return false;
    }
    if (!std::ranges::all_of(design.GLMDesign, [](float x) { return std::isfinite(x); })) {
        showCritical("ERROR: The design matrix contains values that are not finite numbers.");
        return false;
    }
    return true;
}

bool makeWholeRunEquations(const WholeRunDesign& design, WholeRunEquations& equations) {
    equations = {};
    if (!hasMemory(design))
        return false;
    equations.p = size_t(design.GLMPredictors());
    equations.n = size_t(design.GLMDataPoints());
    equations.transformation = design.transformation;
    for (size_t first = 0; const GLMStudy& study : design.studies) {
        equations.studies.push_back(makeStudyDesign(design, first, size_t(study.dataPoints)));
        first += size_t(study.dataPoints);
    }
    const PointMatrix matrix = designInDouble(design);
    if (!makeNormalEquations(matrix, equations.p, 1.0, equations.plain))
        return false;
    equations.containsConstant = columnsContainConstant(matrix, equations.plain.onesBetas);
    equations.bins.resize(design.CorrectSerialCorrelations ? size_t(nrOfSerialCorrelationBins) : 0);
    for (size_t bin = 0; bin < equations.bins.size(); ++bin)
        if (!makeBinEquations(design, int(bin), equations.bins[bin]))
            return false;
    return true;
}

void storeDerivedParts(const WholeRunEquations& equations, WholeRunModel& model) {
    model.rank = equations.plain.rank;
    model.binInverses.clear();
    for (const NormalEquations& bin : equations.bins)
        model.binInverses.push_back(inFloat(bin.inverse));
}

bool deriveFromDesign(WholeRunModel& model) {
    WholeRunEquations equations;
    if (!makeWholeRunEquations(model, equations))
        return false;
    storeDerivedParts(equations, model);
    return true;
}
