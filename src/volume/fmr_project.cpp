// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/fmr_project.h"

bool FMRProject::allocateVolumes() {
    volumes.clear();
    const size_t count = size_t(std::max(NrOfVolumes, 0));
    // Each volume alone is small: the whole run is held against what the system can give.
    if (count != 0 && (volumeSamples() > SIZE_MAX / count ||
                       !memoryIsAvailable(count * volumeSamples(), sizeof(int16_t))))
        return false;
    volumes.resize(count);
    for (Volume& volume : volumes) {
        if (!volume.allocate(volumeSamples())) {
            volumes.clear();
            return false;
        }
    }
    return true;
}
