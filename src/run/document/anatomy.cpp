// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/document/anatomy.h"

#include <algorithm>

CubeVoxel nearestCubeVoxel(const C3dVector& point) {
    const auto within = [](float coordinate) {
        return std::clamp(nearestVoxel(coordinate), 0, cubeSide - 1);
    };
    return {within(point.x), within(point.y), within(point.z)};
}
