// High-resolution slices in the planes of the functional ones.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "volume/fmr_project.h"

/// As many slices as the run has; x fastest, then y, then slices. No samples without a scan.
struct InplaneScan {
    VolumeSize size;
    Volume samples;

    /// Zeroed samples of these sizes. False, and empty, for a size below 1 or when memory runs out.
    [[nodiscard]] bool allocate(const VolumeSize& wanted) {
        *this = {};
        if (wanted.x <= 0 || wanted.y <= 0 || wanted.slices <= 0 ||
            wanted.sliceSamples() > SIZE_MAX / sizeof(int16_t) / size_t(wanted.slices) ||
            !samples.allocate(wanted.samples()))
            return false;
        size = wanted;
        return true;
    }
    /// Samples of a slice; empty for an invalid index.
    [[nodiscard]] std::span<int16_t> slice(int index) {
        if (index < 0 || index >= size.slices)
            return {};
        return samples.span().subspan(size_t(index) * size.sliceSamples(), size.sliceSamples());
    }
};
