// Spatial smoothing of volumes with a Gaussian, in the frequency domain.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "volume/smoothing.h"

#include <memory>

/// Multiplies the spectrum of a volume by exp(-2 pi^2 sigma^2 f^2), the transform of a Gaussian.
/// The volume is extended by its mirror image at each border (a cosine transform), so that borders
/// keep their intensity and nothing wraps around to the opposite border. Unlike the kernels of the
/// space domain, the Gaussian is not truncated. One object serves a run.
class FrequencySmoothing {
public:
    FrequencySmoothing();
    ~FrequencySmoothing();

    /// Plans the transforms of volumes of these sizes. An axis whose width is not above 0 is not
    /// smoothed; without a width along Z the transforms are those of single slices. Widths must be
    /// finite. False after a message when memory runs out.
    [[nodiscard]] bool prepare(const VolumeGeometry& geometry, const VoxelWidths& widths);
    /// Smooths the samples of one volume, read as unsigned, in place; results are clamped to 0 to
    /// 32767 and rounded half up. Needs a successful prepare().
    void smooth(std::span<int16_t> samples);

private:
    struct Plans;
    std::unique_ptr<Plans> plans_;
};
