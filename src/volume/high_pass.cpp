// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/high_pass.h"

#include "base/file_writing.h"
#include "base/messages.h"
#include "base/paths.h"
#include "stats/numerics/linear_systems.h"
#include "stats/numerics/matrix_products.h"
#include "volume/time_courses.h"

#include <cmath>

namespace {

/// Row-major matrices in double.
struct DriftModel {
    int volumes = 0;
    int drifts = 0;                 ///< columns of the design without the constant
    std::vector<double> columns;    ///< volumes x drifts
    std::vector<double> projection; ///< drifts x volumes: a time course gives its betas
};

std::vector<double> asDouble(const std::vector<float>& values) {
    return {values.begin(), values.end()};
}

/// (X'X)^-1 X' without the row of the constant, whose beta is not subtracted.
[[nodiscard]] bool makeModel(const std::vector<float>& design, int volumes, DriftModel& model) {
    const int predictors = int(design.size()) / volumes;
    const size_t products = size_t(predictors) * size_t(predictors);
    const std::vector<double> x = asDouble(design);
    std::vector<double> xx(products);
    numerics::t_intel_matrix_matrix_mult_d(x.data(), x.data(), xx.data(), predictors, predictors,
                                           volumes, true, false);
    std::vector<float> inverse(products);
    if (!numerics::invertMatrix(std::vector<float>(xx.begin(), xx.end()), inverse, predictors))
        return false;
    model.volumes = volumes;
    model.drifts = predictors - 1;
    model.projection.resize(size_t(model.drifts) * size_t(volumes));
    numerics::t_intel_matrix_matrix_mult_d(asDouble(inverse).data(), x.data(),
                                           model.projection.data(), model.drifts, volumes,
                                           predictors, false, true);
    for (size_t i = 0; i < x.size(); ++i)
        if ((i + 1) % size_t(predictors) != 0)
            model.columns.push_back(x[i]);
    return true;
}

bool removeDrifts(FMRProject& project, const std::vector<float>& design, int volumes,
                  const StepProgress& progress) {
    constexpr int block = int(timeCourseBlock);
    DriftModel model;
    if (!makeModel(design, volumes, model))
        return false;
    std::vector<double> betas(size_t(model.drifts) * timeCourseBlock);
    const auto filter = [&](int, std::span<const double> samples, std::span<double> filtered) {
        numerics::t_intel_matrix_matrix_mult_d(model.projection.data(), samples.data(),
                                               betas.data(), model.drifts, block, volumes, false,
                                               false);
        numerics::t_intel_matrix_matrix_mult_d(model.columns.data(), betas.data(), filtered.data(),
                                               volumes, block, model.drifts, false, false);
        // The residual plus the constant's beta is the sample minus the fitted drifts.
        for (size_t i = 0; i < samples.size(); ++i)
            filtered[i] = samples[i] - filtered[i];
    };
    return filterTimeCourses(project, volumes, SampleRange::Signed, progress, filter);
}

} // namespace

std::vector<float> fillFourierDesign(int cycles, int nrOfPoints) {
    if (cycles < 0 || nrOfPoints < 1)
        return {};
    const size_t points = size_t(nrOfPoints);
    std::vector<float> design;
    design.reserve(points * (2 * size_t(cycles) + 2));
    for (size_t t = 0; t < points; ++t) {
        for (size_t k = 1; k <= size_t(cycles); ++k) {
            const double angle = double(t) / double(points) * double(k) * 6.28318530718;
            design.push_back(float(std::sin(angle)));
            design.push_back(float(std::cos(angle)));
        }
        design.push_back(points > 1 ? float(2.0 * double(t) / double(points - 1) - 1.0) : 0.0f);
        design.push_back(1.0f);
    }
    return design;
}

bool writeFourierDesign(const std::vector<float>& design, int nrOfPoints,
                        const QString& workingFolder) {
    if (nrOfPoints < 1)
        return false;
    const size_t columns = design.size() / size_t(nrOfPoints);
    QByteArray text;
    for (size_t i = 0; i < design.size(); ++i) {
        text += formatted("%8.6f ", double(design[i]));
        if ((i + 1) % columns == 0)
            text += '\n';
    }
    return writeFileAtomically(paths::join(workingFolder, "DM-Fourier.txt"), text);
}

bool highPassIsPossible(int nrOfVolumes, int cycles) {
    if (cycles < 0 || cycles > maximumHighPassCycles) {
        showWarning(QString("ERROR: The number of sines/cosines of the high-pass filter must be "
                            "between 0 and %1!")
                        .arg(maximumHighPassCycles));
        return false;
    }
    if (2 * cycles + 2 > nrOfVolumes) {
        showWarning(QString("ERROR: A high-pass filter with %1 sines/cosines needs at least %2 "
                            "volumes, and the run has %3!")
                        .arg(cycles)
                        .arg(2 * cycles + 2)
                        .arg(nrOfVolumes));
        return false;
    }
    return true;
}

bool highPassFourier(FMRProject& project, int nrOfVolumes, int cycles,
                     const StepProgress& progress) {
    const int volumes = nrOfCompleteVolumes(project, nrOfVolumes);
    if (!highPassIsPossible(volumes, cycles))
        return false;
    const std::vector<float> design = fillFourierDesign(cycles, volumes);
    (void)writeFourierDesign(design, volumes, QString());
    return removeDrifts(project, design, volumes, progress);
}

bool removeLinearTrend(FMRProject& project, int nrOfVolumes, const StepProgress& progress) {
    const int volumes = nrOfCompleteVolumes(project, nrOfVolumes);
    return volumes < 2 || removeDrifts(project, fillFourierDesign(0, volumes), volumes, progress);
}
