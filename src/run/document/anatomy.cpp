// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/document/anatomy.h"

#include <algorithm>

std::optional<C3dVector> AnatomicalCube::functionalPlace(const C3dVector& cubePoint) const {
    if (!mapping)
        return {};
    return mapping->cubeToFunctional * (scaling() ? scaling()->toACPC(cubePoint) : cubePoint);
}

std::optional<C3dVector> AnatomicalCube::cubePlace(const C3dVector& functionalPoint) const {
    if (!mapping)
        return {};
    const C3dVector point = mapping->functionalToCube * functionalPoint;
    return scaling() ? scaling()->toTalairach(point) : point;
}

CubeVoxel nearestCubeVoxel(const C3dVector& point) {
    const auto within = [](float coordinate) {
        return std::clamp(nearestVoxel(coordinate), 0, cubeSide - 1);
    };
    return {within(point.x), within(point.y), within(point.z)};
}
