// SPDX-License-Identifier: GPL-3.0-or-later
#include "decoder/ideal_responses.h"

#include "stats/hrf.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double commonDeviation = 0.5; ///< percent

/// The response to a task that begins at 0 and lasts, one value for each millisecond, up to 1 at
/// the end of the kernel.
std::vector<double> lastingResponse() {
    std::vector<double> kernel;
    twoGammaHRF(0.001, {}, 1, kernel);
    std::vector<double> response(kernel.size());
    for (size_t i = 1; i < kernel.size(); ++i)
        response[i] = response[i - 1] + (kernel[i - 1] + kernel[i]) / 2.0;
    for (double& value : response)
        value /= response.back();
    return response;
}

double valueAt(const std::vector<double>& response, double milliseconds) {
    const double last = double(response.size() - 1);
    return response[size_t(std::lround(std::clamp(milliseconds, 0.0, last)))];
}

/// Slopes on references of one spread can be compared as correlations can; of others, those on the
/// small responses to short tasks would be greater.
void takeCommonDeviation(std::vector<double>& response) {
    double sum = 0.0, squares = 0.0;
    for (const double value : response) {
        sum += value;
        squares += value * value;
    }
    const auto n = double(response.size());
    const double variance = n > 0.0 ? squares / n - sum / n * (sum / n) : 0.0;
    if (variance > 0.0)
        for (double& value : response)
            value *= commonDeviation / std::sqrt(variance);
}

} // namespace

ReferenceCurves idealResponses(int nrOfPoints, double TR) {
    ReferenceCurves references;
    references.fill(std::vector<float>(size_t(std::max(nrOfPoints, 0)), float(fullPercent)));
    if (!std::isfinite(TR))
        return references;
    const std::vector<double> response = lastingResponse();
    for (int r = 0; r < LetterCode::nrOfReferences; ++r) {
        const LetterCode code{0, r};
        const double begin = LetterCode::timeStep * code.onset();
        const double end = begin + LetterCode::timeStep * (code.duration() + 1);
        std::vector<float>& curve = references[size_t(r)];
        std::vector<double> change(curve.size());
        for (size_t point = 0; point < change.size(); ++point) {
            // The slices of a volume are measured during the whole TR.
            const double time = TR * (double(point) + 0.5);
            change[point] = valueAt(response, time - begin) - valueAt(response, time - end);
        }
        takeCommonDeviation(change);
        std::ranges::transform(change, curve.begin(),
                               [](double value) { return float(fullPercent + value); });
    }
    return references;
}
