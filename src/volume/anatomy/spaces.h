// The coordinates of a point of the cube in the spaces that are known.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "volume/anatomy/coordinate_chain.h"
#include "volume/anatomy/tal_file.h"
#include "volume/anatomy/talairach_scaling.h"
#include "volume/anatomy/vmr_volume.h"

#include <optional>

/// Which space the cube itself is in.
enum class CubeSpace { Native, ACPC, Talairach, Functional };

/// What is known of the spaces around a cube.
struct AnatomicalSpaces {
    CubeSpace cube = CubeSpace::Native;
    std::optional<C3dMatrix> cubeToScanner;    ///< cube voxel (Talairach: AC-PC) to scanner mm
    std::optional<TalairachScaling> talairach; ///< from the reference points of a .tal file
};

struct SpaceCoordinates {
    std::optional<C3dVector> scanner;   ///< mm, patient coordinates: x to the left, y back, z up
    std::optional<C3dVector> acpc;      ///< mm from the anterior commissure: x right, y front, z up
    std::optional<C3dVector> talairach; ///< likewise
};

/// What is known of the point of the cube, in voxels. AC-PC and Talairach coordinates are given for
/// cubes in one of these spaces, whose axes run back (x), down (y) and to the left (z); between the
/// two they need the reference points. Without these the anterior commissure of an AC-PC cube is
/// taken to be at talairachAC, as it is in a Talairach cube.
[[nodiscard]] SpaceCoordinates spaceCoordinates(const AnatomicalSpaces& spaces,
                                                const C3dVector& cubeVoxel);
