// Iterates over the voxels of the brain mask in blocks that fit the cache.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "stats/glm_kernels.h"
#include "stats/incremental_glm.h"

#include <algorithm>

/// Calls `work(first, count)` for each block of consecutive voxels of the mask.
template<typename Work> void forEachBlock(const BrainMask& mask, const Work& work) {
    for (const BrainMask::Run& run : mask.runs)
        for (size_t done = 0; done < run.count; done += glmBlockVoxels)
            work(run.first + done, std::min(glmBlockVoxels, run.count - done));
}

/// True when the project holds the first `nrOfVolumes` volumes, at least one, each of `voxels`
/// samples.
[[nodiscard]] inline bool volumesHaveSize(const FMRProject& project, int nrOfVolumes,
                                          size_t voxels) {
    return nrOfVolumes >= 1 && size_t(nrOfVolumes) <= project.volumes.size() &&
           project.volumes.samplesOfEach() == voxels;
}

/// Calls `work(samples, first, count)` for each block, where `samples` holds, for each of the first
/// `nrOfVolumes` volumes, a pointer to the block's samples. volumesHaveSize must hold.
template<typename Work>
void forEachBlockOverTime(const BrainMask& mask, const FMRProject& project, int nrOfVolumes,
                          const Work& work) {
    std::vector<const int16_t*> samples(size_t(nrOfVolumes), nullptr);
    forEachBlock(mask, [&](size_t first, size_t count) {
        for (size_t t = 0; t < samples.size(); ++t)
            samples[t] = project.volumes[t].data() + first;
        work(samples, first, count);
    });
}
