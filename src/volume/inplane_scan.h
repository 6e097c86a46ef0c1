// The high-resolution slices that lie in the planes of the functional ones.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "volume/fmr_project.h"

/// As many slices as the run has; x fastest, then y, then slices. Without samples there is no scan.
struct InplaneScan {
    int sizeX = 0;
    int sizeY = 0;
    int nrOfSlices = 0;
    Volume samples;

    /// Zeroed samples of these sizes. False, and empty, for a size below 1 or when memory runs out.
    [[nodiscard]] bool allocate(int x, int y, int slices) {
        *this = {};
        if (x <= 0 || y <= 0 || slices <= 0 ||
            size_t(x) * size_t(y) > SIZE_MAX / sizeof(int16_t) / size_t(slices) ||
            !samples.allocate(size_t(x) * size_t(y) * size_t(slices)))
            return false;
        sizeX = x;
        sizeY = y;
        nrOfSlices = slices;
        return true;
    }
    [[nodiscard]] size_t sliceSamples() const { return size_t(sizeX) * size_t(sizeY); }
    /// Samples of a slice; empty for one that is not there.
    [[nodiscard]] std::span<int16_t> slice(int index) {
        const bool present = index >= 0 && index < nrOfSlices;
        return present ? samples.span().subspan(size_t(index) * sliceSamples(), sliceSamples())
                       : std::span<int16_t>();
    }
};
