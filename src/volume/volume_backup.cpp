// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/volume_backup.h"

#include "base/messages.h"
#include "volume/time_courses.h"

bool VolumeBackup::copy(const FMRProject& project, int nrOfVolumes, const StepProgress& progress) {
    const size_t samples = project.volumeSamples();
    const auto count = size_t(nrOfCompleteVolumes(project, nrOfVolumes));
    // Single volumes are small, so the available memory is checked for the whole run.
    bool enoughMemory = memoryIsAvailable(count * samples, sizeof(int16_t));
    volumes_.clear();
    for (size_t v = 0; v < count && enoughMemory; ++v) {
        enoughMemory = volumes_.emplace_back().allocate(samples);
        if (enoughMemory)
            std::copy_n(project.volumes[v].data(), samples, volumes_.back().data());
        if (!progress.advance(0, 1))
            return false;
    }
    if (!enoughMemory)
        showCritical("ERROR: Insufficient memory for a copy of the run during post-processing!");
    return enoughMemory;
}

void VolumeBackup::restore(FMRProject& project) const {
    for (size_t v = 0; v < volumes_.size(); ++v)
        std::ranges::copy(volumes_[v].span(), project.volumes[v].data());
}

void VolumeBackup::release() {
    volumes_.clear();
    volumes_.shrink_to_fit();
}
