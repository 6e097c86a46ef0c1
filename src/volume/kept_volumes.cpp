// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/kept_volumes.h"

#include "base/messages.h"

bool KeptVolumes::keep(const FMRProject& project, int nrOfVolumes, const StepProgress& progress) {
    FMRHeader sizes = project;
    sizes.NrOfVolumes = nrOfVolumes;
    static_cast<FMRHeader&>(kept_) = sizes;
    if (!kept_.allocateVolumes()) {
        showCritical("ERROR: Insufficient memory for a copy of the run during post-processing!");
        return false;
    }
    for (size_t v = 0; v < kept_.volumes.size(); ++v) {
        std::copy_n(project.volumes[v].data(), project.volumeSamples(), kept_.volumes[v].data());
        if (!progress.advance(0, nrOfVolumes))
            return false;
    }
    return true;
}

void KeptVolumes::bringBack(FMRProject& project) const {
    for (size_t v = 0; v < kept_.volumes.size(); ++v)
        std::ranges::copy(kept_.volumes[v].span(), project.volumes[v].data());
}

void KeptVolumes::release() {
    kept_.volumes.clear();
    kept_.volumes.shrink_to_fit();
}
