// Gaussian kernels of smoothing.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <span>

/// Standard deviation of a Gaussian of this full width at half maximum: width / sqrt(8 ln 2).
[[nodiscard]] double gaussianSigma(double fullWidth);

/// The taps of a Gaussian along one axis, from -halfWidth to halfWidth.
class GaussianKernel {
public:
    static constexpr int maximumTaps = 101;

    /// A full width at half maximum in voxels w gives the half width w * 1.8 * 0.5, rounded to the
    /// nearest integer, and the taps exp(-d^2 / (2 sigma^2)), computed in double, divided by their
    /// sum and stored as floats; all are 0 if that sum is not positive, as it is for a width of 0.
    /// False, with the kernel as it was, for more than 101 taps.
    [[nodiscard]] bool setWidth(double fullWidth);
    /// A single tap of 1: no smoothing along the axis.
    void setIdentity();

    [[nodiscard]] int halfWidth() const { return halfWidth_; }
    [[nodiscard]] std::span<const float> taps() const {
        return {taps_.data(), size_t(2 * halfWidth_ + 1)};
    }

private:
    int halfWidth_ = 0;
    std::array<float, maximumTaps> taps_{1.0f};
};
