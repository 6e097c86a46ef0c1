// A rectangle that the operator drags, and what was measured in it.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/loop/multi_run_fixture.h"

inline constexpr int nrOfDraggedVoxels = (drag.right - drag.left) * (drag.bottom - drag.top);

/// Mean over the dragged voxels, from the volume as it was measured.
inline double measuredMean(int volume) {
    double sum = 0.0;
    for (int y = drag.top; y < drag.bottom; ++y)
        for (int x = drag.left; x < drag.right; ++x)
            sum += scriptedSample(size_t(64 * drag.slice + 8 * y + x), volume);
    return sum / nrOfDraggedVoxels;
}
