// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/anatomy/vmr_volume.h"

#include "base/memory.h"

#include <cstring>
#include <new>

bool VMRVolume::clearCube() {
    if (cube.size() == cubeVoxels) {
        std::memset(cube.data(), 0, cube.size());
        return true;
    }
    if (!memoryIsAvailable(cubeVoxels, 1))
        return false;
    try {
        cube.assign(cubeVoxels, 0);
    } catch (const std::bad_alloc&) {
        cube.clear();
        return false;
    }
    return true;
}
