// Haemodynamic responses and their convolution with a box-car.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <span>
#include <vector>

struct TwoGammaHRFParams {
    float timeToPeak = 6.0f;        ///< seconds, positive response
    float timeToUndershoot = 16.0f; ///< seconds
    float dispersion = 1.0f;
    float undershootDispersion = 1.0f;
    float undershootRatio = 6.0f; ///< response to undershoot
    float onset = 0.0f;           ///< seconds
    float length = 32.0f;         ///< seconds, of the kernel

    bool operator==(const TwoGammaHRFParams&) const = default;
};

/// Longest kernel; entries beyond it are dropped.
inline constexpr int maximumKernelLength = 18002;

/// Density of the gamma distribution at the first `count` entries of x: 0 for x <= 0, otherwise
/// exp((shape - 1) ln x + shape ln rate - x rate - ln Gamma(shape)), the last term by gammln.
void gammaPdf(int count, std::span<const double> x, double shape, double rate,
              std::span<double> out);

/// The two-gamma response: the difference of two gamma densities, sampled every `dtSeconds` from a
/// grid `oversampling` times finer, scaled to a peak magnitude of 1 unless that is below 0.0001. An
/// undershoot ratio below 0.001 gives the inverted undershoot only.
///
/// The kernel has trunc(length / dt) + 1 entries. It is empty when dt, the oversampling or the
/// length is invalid (not positive, not finite, or more than ten million fine samples).
void twoGammaHRF(double dtSeconds, const TwoGammaHRFParams& params, int oversampling,
                 std::vector<double>& kernelOut);

/// A kernel as the convolution uses it.
struct HRFKernel {
    /// At most maximumKernelLength floats, divided by the magnitude of the sum of all entries.
    std::vector<float> values;
    int length = 0; ///< L, including dropped entries
};

/// Two-gamma kernel with one entry for each `stepMilliseconds`.
[[nodiscard]] HRFKernel twoGammaKernel(int stepMilliseconds, const TwoGammaHRFParams& params,
                                       int oversampling);
/// Single-gamma kernel ((k - delta) / tau)^2 exp(-(k - delta) / tau) with delta = 2.5 s and
/// tau = 1.25 s (G. Boynton et al., Journal of Neuroscience 16, 1996, 4207-4221, with 3 stages).
/// Its half width is trunc(1.8 c + 0.5), with c = 6 for protocols in volumes and 5000 in
/// milliseconds.
[[nodiscard]] HRFKernel singleGammaKernel(int stepMilliseconds, bool inMilliseconds);

/// The column convolved with the kernel in float, truncated to its length.
[[nodiscard]] std::vector<float> convolveColumn(std::span<const float> box,
                                                const HRFKernel& kernel);
