// Small runs for the tests of smoothing and post-processing.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "support/recorded_progress.h"
#include "volume/fmr_project.h"

#include <functional>

inline double blank(int, int, int, int) {
    return 0.0;
}

/// A run of 2 s TR whose slices fill the TR; `value` is called with x, y, slice and volume.
inline FMRProject runOf(int sizeX, int sizeY, int nrOfSlices, int nrOfVolumes,
                        const std::function<double(int, int, int, int)>& value = blank) {
    FMRProject project;
    project.ResolutionX = sizeX;
    project.ResolutionY = sizeY;
    project.NrOfSlices = nrOfSlices;
    project.NrOfVolumes = nrOfVolumes;
    project.pixelSizeX = project.pixelSizeY = 3.0f;
    project.sliceThickness = 3.0f;
    project.sliceGap = 1.0f;
    project.InterSliceTime = std::floor(project.TR / float(nrOfSlices));
    EXPECT_TRUE(project.allocateVolumes());
    const int sliceSamples = sizeX * sizeY;
    for (int v = 0; v < nrOfVolumes; ++v)
        for (int i = 0; i < sliceSamples * nrOfSlices; ++i)
            project.volumes[size_t(v)][size_t(i)] = int16_t(
                uint16_t(std::lround(value(i % sizeX, i / sizeX % sizeY, i / sliceSamples, v))));
    return project;
}

/// All samples, volume after volume.
inline std::vector<int16_t> samplesOf(const FMRProject& project) {
    std::vector<int16_t> samples;
    for (size_t v = 0; v < project.volumes.size(); ++v)
        samples.insert(samples.end(), project.volumes[v].begin(), project.volumes[v].end());
    return samples;
}
