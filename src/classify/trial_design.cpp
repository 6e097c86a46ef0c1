// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/trial_design.h"

#include "base/memory.h"
#include "stats/numerics/linear_systems.h"

#include <QtGlobal>
#include <algorithm>
#include <cmath>

namespace {

constexpr int oversampling = 16;
constexpr qint64 longestTrial = 1'000'000'000;

/// Milliseconds between two volumes; at least 1, even if the header is wrong.
int roundedTR(float TR) {
    constexpr float longest = 1e7f;
    return TR >= 1.0f ? int(std::lround(std::min(TR, longest))) : 1;
}

/// X'X, p x p.
std::vector<double> normalMatrix(const TrialDesign& design) {
    const size_t p = size_t(design.nrOfPredictors);
    std::vector<double> xx(p * p, 0.0);
    for (size_t row = 0; row < design.X.size(); row += p)
        for (size_t j = 0; j < p; ++j)
            for (size_t k = 0; k < p; ++k)
                xx[j * p + k] += design.X[row + j] * design.X[row + k];
    return xx;
}

/// (X'X)^-1 X', p x n.
std::vector<double> solutionOf(const TrialDesign& design) {
    const size_t p = size_t(design.nrOfPredictors);
    const size_t n = size_t(design.nrOfPoints);
    std::vector<double> solution(p * n, 0.0);
    for (size_t j = 0; j < p; ++j)
        for (size_t k = 0; k < p; ++k)
            for (size_t i = 0; i < n; ++i)
                solution[j * n + i] += design.inverse[j * p + k] * design.X[i * p + k];
    return solution;
}

TrialDesign designOf(std::span<const double> response, const TrialOptions& options) {
    TrialDesign design;
    const size_t n = response.size();
    const size_t p = options.linearTrend ? 3 : 2;
    if (n == 0 || !memoryIsAvailable(n, 2 * p * sizeof(double)))
        return design;
    design.nrOfPoints = int(n);
    design.nrOfPredictors = int(p);
    design.X.reserve(n * p);
    for (size_t i = 0; i < n; ++i) {
        design.X.push_back(response[i]);
        design.X.push_back(1.0);
        if (options.linearTrend)
            design.X.push_back(n > 1 ? double(i) / double(n - 1) : 0.0);
    }
    numerics::NormalInverse inverse;
    if (!numerics::invertNormalMatrix(normalMatrix(design), int(p), inverse))
        return {};
    design.inverse = std::move(inverse.inverse);
    design.solution = solutionOf(design);
    return design;
}

} // namespace

int trialDuration(int start, int end) {
    return int(std::clamp(qint64(end) - start, -longestTrial, longestTrial));
}

int volumesAfterOnset(const TrialOptions& options, int duration) {
    const qint64 length = options.useTrialDuration ? duration : 0;
    return int(std::clamp(options.postOnset + length, -longestTrial, longestTrial));
}

int pointsOfWindow(const TrialOptions& options, int duration) {
    return options.preOnset + 1 + volumesAfterOnset(options, duration);
}

TrialDesign trialDesign(const TrialOptions& options, int duration, float TR) {
    const int n = pointsOfWindow(options, duration);
    if (n < 1 || !memoryIsAvailable(size_t(n), 2 * sizeof(float) + sizeof(double)))
        return {};
    const auto point = [n](qint64 fromOne) { return std::clamp<qint64>(fromOne, 1, n); };
    const qint64 first = point(qint64(options.preOnset) + 1);
    const qint64 last = point(qint64(duration) + 1 + options.preOnset);
    std::vector<float> box(size_t(n), 0.0f);
    for (qint64 i = first; i <= last; ++i)
        box[size_t(i - 1)] = 1.0f;
    const TwoGammaHRFParams params = options.response == TrialResponse::AdjustedTwoGamma
                                         ? options.adjustedHRF
                                         : TwoGammaHRFParams();
    const std::vector<float> response =
        convolveColumn(box, twoGammaKernel(roundedTR(TR), params, oversampling));
    return designOf(std::vector<double>(response.begin(), response.end()), options);
}

TrialDesign measuredResponseDesign(std::span<const double> response, const TrialOptions& options) {
    return designOf(response, options);
}

TrialDesign lastPointDesign(int nrOfPoints, const TrialOptions& options) {
    if (nrOfPoints < 1 || !memoryIsAvailable(size_t(nrOfPoints), sizeof(double)))
        return {};
    std::vector<double> response(size_t(nrOfPoints), 0.0);
    response.back() = 1.0;
    return designOf(response, options);
}

std::vector<int> windowVolumes(int first, int count, int nrOfMeasuredVolumes) {
    std::vector<int> volumes;
    const qint64 last = std::max(nrOfMeasuredVolumes - 1, 0);
    for (qint64 i = 0; i < count; ++i)
        volumes.push_back(int(std::clamp<qint64>(first + i, 0, last)));
    return volumes;
}
