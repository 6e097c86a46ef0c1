// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/anatomy/spaces.h"

SpaceCoordinates spaceCoordinates(const AnatomicalSpaces& spaces, const C3dVector& cubeVoxel) {
    constexpr C3dVector atlasAC{talairachAC, talairachAC, talairachAC};
    const auto& scaling = spaces.talairach;
    // The axes of these cubes run back, down and to a side; coordinates to the right, front and
    // top.
    const float right = spaces.LeftRightConvention == neurologicalConvention ? 1.0f : -1.0f;
    const auto from = [right](const C3dVector& commissure, const C3dVector& voxel) {
        return C3dVector{right * (voxel.z - commissure.z), commissure.x - voxel.x,
                         commissure.y - voxel.y};
    };
    SpaceCoordinates coordinates;
    if (spaces.cubeToScanner) {
        const bool scaled = spaces.cube == CubeSpace::Talairach && scaling;
        coordinates.scanner =
            *spaces.cubeToScanner * (scaled ? scaling->toACPC(cubeVoxel) : cubeVoxel);
    }
    if (spaces.cube == CubeSpace::ACPC) {
        coordinates.acpc = from(scaling ? scaling->anteriorCommissure() : atlasAC, cubeVoxel);
        if (scaling)
            coordinates.talairach = from(atlasAC, scaling->toTalairach(cubeVoxel));
    } else if (spaces.cube == CubeSpace::Talairach) {
        coordinates.talairach = from(atlasAC, cubeVoxel);
        if (scaling)
            coordinates.acpc = from(scaling->anteriorCommissure(), scaling->toACPC(cubeVoxel));
    }
    return coordinates;
}
