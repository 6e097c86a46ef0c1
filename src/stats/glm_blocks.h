// Iterates over the voxels of the brain mask in blocks that fit the cache.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/worker_pool.h"
#include "stats/glm_kernels.h"
#include "stats/incremental_glm.h"

#include <algorithm>

/// Consecutive voxels of the mask, at most glmBlockVoxels.
struct MaskBlock {
    size_t first; ///< voxel of the volume
    size_t count;
    size_t before; ///< voxels of the mask before it
};

/// Voxels of the mask in a part of the work, the last one excepted. Some twenty microseconds: long
/// against the handing out of a part, and short against the wait for the last one.
inline constexpr size_t maskPartVoxels = 16 * glmBlockVoxels;

/// Calls `work(block)` for the blocks of one part, which begins behind `begin` voxels of the mask.
template<typename Work>
void forEachBlockOfPart(const BrainMask& mask, size_t begin, const Work& work) {
    const size_t end = std::min(begin + maskPartVoxels, mask.nrOfVoxelsInside());
    auto run = std::ranges::upper_bound(mask.runs, begin, {}, &BrainMask::Run::before) - 1;
    for (size_t before = begin; before < end;) {
        const size_t done = before - run->before;
        const size_t count = std::min({glmBlockVoxels, run->count - done, end - before});
        work(MaskBlock{run->first + done, count, before});
        before += count;
        if (done + count == run->count)
            ++run;
    }
}

/// Calls `work(block, thread)` for each block of consecutive voxels of the mask, several at a time;
/// the threads are numbered as in WorkerPool. The blocks are always the same ones.
template<typename Work>
void forEachBlock(const BrainMask& mask, WorkerPool& workers, const Work& work) {
    const size_t voxels = mask.nrOfVoxelsInside();
    workers.forParts((voxels + maskPartVoxels - 1) / maskPartVoxels,
                     [&](size_t part, size_t thread) {
                         forEachBlockOfPart(mask, part * maskPartVoxels,
                                            [&](const MaskBlock& block) { work(block, thread); });
                     });
}

/// True when the project holds the first `nrOfVolumes` volumes, at least one, each of `voxels`
/// samples.
[[nodiscard]] inline bool volumesHaveSize(const FMRProject& project, int nrOfVolumes,
                                          size_t voxels) {
    return nrOfVolumes >= 1 && size_t(nrOfVolumes) <= project.volumes.size() &&
           project.volumes.samplesOfEach() == voxels;
}

/// Calls `work(samples, block, thread)` for each block, where `samples` holds, for each of the
/// first `nrOfVolumes` volumes, a pointer to the block's samples. volumesHaveSize must hold.
template<typename Work>
void forEachBlockOverTime(const BrainMask& mask, const FMRProject& project, int nrOfVolumes,
                          WorkerPool& workers, const Work& work) {
    std::vector<std::vector<const int16_t*>> samples(size_t(workers.nrOfThreads()));
    for (auto& ofThread : samples)
        ofThread.resize(size_t(nrOfVolumes));
    forEachBlock(mask, workers, [&](const MaskBlock& block, size_t thread) {
        for (size_t t = 0; t < size_t(nrOfVolumes); ++t)
            samples[thread][t] = project.volumes[t].data() + block.first;
        work(samples[thread], block, thread);
    });
}
