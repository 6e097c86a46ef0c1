// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/anatomy/spaces.h"

namespace {

// A voxel of an AC-PC or Talairach cube, whose axes run back, down and left, in millimetres to the
// right, front and top of the anterior commissure.
C3dVector fromCommissure(const C3dVector& voxel, const C3dVector& commissure) {
    return {commissure.z - voxel.z, commissure.x - voxel.x, commissure.y - voxel.y};
}

} // namespace

SpaceCoordinates spaceCoordinates(const AnatomicalSpaces& spaces, const C3dVector& cubeVoxel) {
    constexpr C3dVector atlasAC{talairachAC, talairachAC, talairachAC};
    const auto& scaling = spaces.talairach;
    SpaceCoordinates coordinates;
    if (spaces.cubeToScanner) {
        const bool scaled = spaces.cube == CubeSpace::Talairach && scaling;
        coordinates.scanner =
            *spaces.cubeToScanner * (scaled ? scaling->toACPC(cubeVoxel) : cubeVoxel);
    }
    if (spaces.cube == CubeSpace::ACPC) {
        coordinates.acpc =
            fromCommissure(cubeVoxel, scaling ? scaling->anteriorCommissure() : atlasAC);
        if (scaling)
            coordinates.talairach = fromCommissure(scaling->toTalairach(cubeVoxel), atlasAC);
    } else if (spaces.cube == CubeSpace::Talairach) {
        coordinates.talairach = fromCommissure(cubeVoxel, atlasAC);
        if (scaling)
            coordinates.acpc =
                fromCommissure(scaling->toACPC(cubeVoxel), scaling->anteriorCommissure());
    }
    return coordinates;
}
