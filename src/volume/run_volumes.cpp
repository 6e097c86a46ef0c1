// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/run_volumes.h"

#include "base/event_pump.h"

bool RunVolumes::allocate(size_t count, size_t samples, EventPump* pump) {
    clear();
    // Single volumes are small, so the available memory is checked for the whole run.
    if (count != 0 &&
        (samples > SIZE_MAX / count || !memoryIsAvailable(count * samples, sizeof(int16_t))))
        return false;
    buffers_.resize(count);
    for (Volume& volume : buffers_) {
        if (!volume.allocate(samples)) {
            clear();
            return false;
        }
        table_.push_back(volume.data());
        if (pump)
            pump->processEvents();
    }
    return true;
}

void RunVolumes::clear() {
    table_.clear();
    buffers_.clear();
}
