// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/frequency_smoothing.h"

#include "base/messages.h"

#include <cmath>
#include <fftw3.h>
#include <numbers>

namespace {

struct FreePlan {
    void operator()(fftwf_plan plan) const { fftwf_destroy_plan(plan); }
};
using Plan = std::unique_ptr<std::remove_pointer_t<fftwf_plan>, FreePlan>;

struct FreeSamples {
    void operator()(float* samples) const { fftwf_free(samples); }
};
using Samples = std::unique_ptr<float, FreeSamples>;

/// Factors for the frequencies k / (2 length) of one axis, including the normalisation 1 / (2
/// length) of a forward and backward transform.
std::vector<float> transferFactors(double width, int length) {
    const double sigma = width > 0.0 ? gaussianSigma(width) : 0.0;
    std::vector<float> factors;
    for (int k = 0; k < length; ++k) {
        const double radians = std::numbers::pi * k / length; // 2 pi f
        const double exponent = -0.5 * sigma * sigma * radians * radians;
        factors.push_back(float(std::exp(exponent) / (2.0 * length)));
    }
    return factors;
}

} // namespace

struct FrequencySmoothing::Plans {
    std::vector<float> factorsX;
    std::vector<float> factorsY;
    std::vector<float> factorsZ;
    Samples samples;
    Plan forward;
    Plan backward;
};

FrequencySmoothing::FrequencySmoothing() = default;
FrequencySmoothing::~FrequencySmoothing() = default;

bool FrequencySmoothing::prepare(const VolumeGeometry& geometry, const VoxelWidths& widths) {
    plans_ = std::make_unique<Plans>();
    plans_->factorsX = transferFactors(widths.x, geometry.ResolutionX);
    plans_->factorsY = transferFactors(widths.y, geometry.ResolutionY);
    const bool acrossSlices = widths.z > 0.0;
    plans_->factorsZ = acrossSlices ? transferFactors(widths.z, geometry.NrOfSlices)
                                    : std::vector<float>(size_t(geometry.NrOfSlices), 1.0f);
    if (memoryIsAvailable(geometry.volumeSamples(), sizeof(float)))
        plans_->samples.reset(fftwf_alloc_real(geometry.volumeSamples()));
    if (float* const data = plans_->samples.get()) {
        const std::array<int, 3> sizes{geometry.NrOfSlices, geometry.ResolutionY,
                                       geometry.ResolutionX};
        const int rank = acrossSlices ? 3 : 2;
        const int howMany = acrossSlices ? 1 : geometry.NrOfSlices;
        const int distance = acrossSlices ? 0 : int(geometry.sliceSamples());
        const auto plan = [&](fftwf_r2r_kind kind) {
            const std::array<fftwf_r2r_kind, 3> kinds{kind, kind, kind};
            return Plan(fftwf_plan_many_r2r(rank, sizes.data() + 3 - rank, howMany, data, nullptr,
                                            1, distance, data, nullptr, 1, distance, kinds.data(),
                                            FFTW_ESTIMATE));
        };
        plans_->forward = plan(FFTW_REDFT10);
        plans_->backward = plan(FFTW_REDFT01);
    }
    if (plans_->forward && plans_->backward)
        return true;
    showCritical("ERROR: Insufficient memory for smoothing in the frequency domain!");
    return false;
}

void FrequencySmoothing::smooth(std::span<int16_t> samples) {
    constexpr float largestSample = 32767.0f;
    float* const data = plans_->samples.get();
    std::ranges::transform(samples, data, [](int16_t sample) { return float(uint16_t(sample)); });
    fftwf_execute(plans_->forward.get());
    float* value = data;
    for (const float factorZ : plans_->factorsZ)
        for (const float factorY : plans_->factorsY)
            for (const float factorX : plans_->factorsX)
                *value++ *= factorX * (factorY * factorZ);
    fftwf_execute(plans_->backward.get());
    for (size_t i = 0; i < samples.size(); ++i)
        samples[i] = int16_t(std::clamp(data[i], 0.0f, largestSample) + 0.5f);
}
