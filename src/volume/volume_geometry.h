// The sizes of volumes.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <cstddef>

/// Numbers of samples: x fastest, then y, then slices. A size below 0 counts as 0.
struct VolumeSize {
    int x = 0;
    int y = 0;
    int slices = 0;

    bool operator==(const VolumeSize&) const = default;
    [[nodiscard]] size_t sliceSamples() const {
        return size_t(std::max(x, 0)) * size_t(std::max(y, 0));
    }
    [[nodiscard]] size_t samples() const { return sliceSamples() * size_t(std::max(slices, 0)); }
};

/// The sizes of a run's volumes and of their voxels. This is their only place: other code takes
/// them from the run, and an array of voxels knows the size that it was allocated with.
struct VolumeGeometry {
    int ResolutionX = 64; ///< MatrixSizeX
    int ResolutionY = 64; ///< MatrixSizeY
    int NrOfSlices = 16;
    float pixelSizeX = 0.0f; ///< millimetres, like all that follow; 0 if unknown
    float pixelSizeY = 0.0f;
    float sliceThickness = 0.0f;
    float sliceGap = 0.0f; ///< negative where slices overlap

    [[nodiscard]] float sliceDistance() const { return sliceThickness + sliceGap; }
    [[nodiscard]] VolumeSize size() const { return {ResolutionX, ResolutionY, NrOfSlices}; }
    [[nodiscard]] size_t sliceSamples() const { return size().sliceSamples(); }
    [[nodiscard]] size_t volumeSamples() const { return size().samples(); }
};
