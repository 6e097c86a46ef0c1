// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/messages.h"
#include "stats/incremental_glm.h"

namespace {

/// Runs continue across row ends, where voxels are consecutive in memory too.
void collectRuns(BrainMask& mask) {
    for (size_t voxel = 0; voxel < mask.voxels.size(); ++voxel) {
        if (mask.voxels[voxel] == 0)
            continue;
        if (mask.runs.empty() || mask.runs.back().first + mask.runs.back().count != voxel)
            mask.runs.push_back({voxel, 0, mask.nrOfVoxelsInside()});
        ++mask.runs.back().count;
    }
}

bool startMask(BrainMask& mask, size_t voxels) {
    mask = BrainMask{};
    // The mask and, at worst, a run for every second voxel.
    if (!memoryIsAvailable(voxels, sizeof(uint8_t) + sizeof(BrainMask::Run) / 2)) {
        showModelessWarning("ERROR: Insufficient memory for creating contrast maps!");
        return false;
    }
    mask.voxels.assign(voxels, 0);
    return true;
}

} // namespace

bool createMaskOfModel(BrainMask& mask, std::span<const float> values) {
    if (!startMask(mask, values.size()))
        return false;
    for (size_t voxel = 0; voxel < values.size(); ++voxel)
        mask.voxels[voxel] = values[voxel] > 0.0f;
    collectRuns(mask);
    return true;
}

bool createBrainMask(BrainMask& mask, const FMRProject& project, int threshold) {
    const size_t voxels = project.volumeSamples();
    if (!startMask(mask, voxels))
        return false;
    if (project.NrOfSlices < 3 || project.volumes.empty() ||
        project.volumes.samplesOfEach() < voxels)
        return true;
    const std::span<const int16_t> volume = project.volumes[0];
    const size_t sliceSamples = project.sliceSamples();
    for (size_t voxel = sliceSamples; voxel < voxels - sliceSamples; ++voxel)
        mask.voxels[voxel] = int(uint16_t(volume[voxel])) > threshold;
    collectRuns(mask);
    return true;
}
