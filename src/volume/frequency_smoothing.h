// Spatial smoothing of volumes with a Gaussian, in the frequency domain.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "volume/smoothing.h"

#include <memory>

/// Multiplies the spectrum of a volume by exp(-2 pi^2 sigma^2 f^2), the transform of a Gaussian.
/// The spectrum is that of the volume continued by its mirror image at each border (a cosine
/// transform), so that borders keep their intensity and nothing leaks from one to the opposite one.
/// Unlike the kernels of the space domain the Gaussian is not cut off. Made once for a run.
class FrequencySmoothing {
public:
    FrequencySmoothing();
    ~FrequencySmoothing();

    /// Plans the transforms of volumes of these sizes. An axis whose width is not above 0 is
    /// left as it is; without a width along Z the transforms are those of single slices. Widths are
    /// finite. False after a message when memory runs out.
    [[nodiscard]] bool prepare(const VolumeGeometry& geometry, const VoxelWidths& widths);
    /// Smooths the samples of one volume, read as unsigned, in place; results are limited to 0 to
    /// 32767 and rounded half up. prepare() has succeeded.
    void smooth(std::span<int16_t> samples);

private:
    struct Plans;
    std::unique_ptr<Plans> plans_;
};
