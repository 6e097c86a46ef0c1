// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/gaussian_kernel.h"

#include <algorithm>
#include <cmath>
#include <numbers>

double gaussianSigma(double fullWidth) {
    return fullWidth / std::sqrt(8.0 * std::numbers::ln2);
}

bool GaussianKernel::setWidth(double fullWidth) {
    const double rounded = std::floor(fullWidth * 1.8 * 0.5 + 0.5);
    if (!(2.0 * rounded + 1.0 <= maximumTaps))
        return false;
    halfWidth_ = int(std::max(rounded, 0.0));
    const double sigma = gaussianSigma(fullWidth);
    std::array<double, maximumTaps> values{};
    double sum = 0.0;
    for (int d = -halfWidth_; d <= halfWidth_; ++d)
        sum += values[size_t(d + halfWidth_)] = std::exp(-double(d * d) / (2.0 * sigma * sigma));
    for (size_t i = 0; i < taps().size(); ++i)
        taps_[i] = sum > 0.0 ? float(values[i] / sum) : 0.0f;
    return true;
}

void GaussianKernel::setIdentity() {
    halfWidth_ = 0;
    taps_[0] = 1.0f;
}
