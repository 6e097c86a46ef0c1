// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/hrf.h"

#include "stats/numerics/special_functions.h"

#include <algorithm>
#include <cmath>

namespace {

void divideBySum(std::vector<float>& values, float sum) {
    const float magnitude = std::abs(sum);
    if (magnitude == 0.0f)
        return;
    for (float& value : values)
        value /= magnitude;
}

} // namespace

void gammaPdf(int count, std::span<const double> x, double shape, double rate,
              std::span<double> out) {
    const double constant = shape * std::log(rate);
    const double logGamma = double(numerics::gammln(float(shape)));
    for (size_t i = 0; i < size_t(std::max(count, 0)); ++i)
        out[i] = x[i] <= 0.0
                     ? 0.0
                     : std::exp((shape - 1.0) * std::log(x[i]) + constant - x[i] * rate - logGamma);
}

void twoGammaHRF(double dtSeconds, const TwoGammaHRFParams& params, int oversampling,
                 std::vector<double>& kernelOut) {
    constexpr double maximumFineSamples = 1e7;
    kernelOut.clear();
    const double dtFine = dtSeconds / oversampling;
    const double length = double(params.length);
    if (!(dtSeconds > 0.0) || oversampling < 1 || !(length >= 0.0) ||
        !(length / dtFine < maximumFineSamples))
        return;
    const size_t nrOfFine = size_t(length / dtFine) + 1;
    const size_t nrOfSamples = size_t(length / dtSeconds) + 1;
    std::vector<double> times(nrOfFine);
    for (size_t i = 0; i < nrOfFine; ++i)
        times[i] = double(i) - double(params.onset) / dtFine;
    const auto density = [&](double peak, double dispersion) {
        std::vector<double> values(nrOfFine);
        gammaPdf(int(nrOfFine), times, peak / dispersion, dtFine / dispersion, values);
        return values;
    };
    const std::vector<double> response =
        density(double(params.timeToPeak), double(params.dispersion));
    const std::vector<double> undershoot =
        density(double(params.timeToUndershoot), double(params.undershootDispersion));

    const double ratio = double(params.undershootRatio);
    double maximum = -100.0;
    double minimum = 100.0;
    kernelOut.assign(nrOfSamples, 0.0);
    for (size_t k = 0; k < nrOfSamples; ++k) {
        const size_t i = k * size_t(oversampling);
        if (i < nrOfFine)
            kernelOut[k] = ratio >= 0.001 ? response[i] - undershoot[i] / ratio : -undershoot[i];
        maximum = std::max(maximum, kernelOut[k]);
        minimum = std::min(minimum, kernelOut[k]);
    }
    const float norm = float(std::max(std::abs(minimum), std::abs(maximum)));
    if (norm < 0.0001f)
        return;
    for (double& value : kernelOut)
        value /= double(norm);
}

HRFKernel twoGammaKernel(int stepMilliseconds, const TwoGammaHRFParams& params, int oversampling) {
    std::vector<double> samples;
    twoGammaHRF(stepMilliseconds / 1000.0, params, oversampling, samples);
    HRFKernel kernel;
    kernel.length = int(samples.size());
    float sum = 0.0f;
    for (const double sample : samples) {
        sum += float(sample);
        if (kernel.values.size() < size_t(maximumKernelLength))
            kernel.values.push_back(float(sample));
    }
    divideBySum(kernel.values, sum);
    return kernel;
}

HRFKernel singleGammaKernel(int stepMilliseconds, bool inMilliseconds) {
    constexpr float delta = 2.5f; // seconds
    constexpr float tau = 1.25f;  // seconds
    const float step = float(std::max(stepMilliseconds, 1));
    const float delaySteps = delta * 1000.0f / step;
    const float tauSteps = tau * 1000.0f / step;
    const int halfWidth = int((inMilliseconds ? 5000.0f : 6.0f) * 1.8f + 0.5f);
    HRFKernel kernel;
    kernel.length = 2 * halfWidth + 1;
    float sum = 0.0f;
    for (int k = 0; k < kernel.length; ++k) {
        const float scaled = (float(k) - delaySteps) / tauSteps;
        const float value = float(k) < delaySteps ? 0.0f : scaled * scaled * std::exp(-scaled);
        sum += value;
        if (k < maximumKernelLength)
            kernel.values.push_back(value);
    }
    divideBySum(kernel.values, sum);
    return kernel;
}

std::vector<float> convolveColumn(std::span<const float> box, const HRFKernel& kernel) {
    std::vector<float> result(box.size(), 0.0f);
    for (size_t t = 0; t < box.size(); ++t) {
        const size_t reach = std::min(kernel.values.size(), box.size() - t);
        for (size_t k = 0; k < reach; ++k)
            result[t + k] += kernel.values[k] * box[t];
    }
    return result;
}
