// From an anatomical cube to the voxels of a functional run and back.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "volume/anatomy/talairach_scaling.h"
#include "volume/c3d_matrix.h"
#include "volume/fmr_project.h"

#include <optional>

/// A record whose centres are those of the voxel grid, (n - 1) / 2 pixels from the centre of the
/// first voxel. Image headers give the position of the first voxel's centre, and the records are
/// made with half of the field of view, so they lie half a pixel further along rows and columns;
/// and the last centre of a mosaic without a protocol block lies one slice too far. To be used
/// wherever a record came from image headers.
[[nodiscard]] FMRPositionInfo centredOnGrid(const FMRPositionInfo& headers,
                                            const VolumeGeometry& geometry);

/// The frame of a stack of slices: its axes are the row, column and stack directions, its origin is
/// the centre of the stack. The matrix takes millimetres of the frame to those of the scanner.
/// Nothing for a record without usable directions: of no length, not finite, or not at right angles
/// within 3 degrees; positionInfoValid is left to the caller. A stack of one slice takes the cross
/// product of row and column directions.
[[nodiscard]] std::optional<C3dMatrix> frameToScanner(const FMRPositionInfo& position);

struct HeaderAlignment {
    C3dMatrix fmrToVmrHeaderMatrix; ///< slice frame to anatomical frame, by the headers (C)
    C3dMatrix aligned;              ///< the same with the fine alignment: inverse(L) * C (A)
};

/// The chain from the headers, by way of the internal axes (b, -c, a) of the scanner's (a, b, c).
/// `alignment` is the first matrix of the .trf file, or the identity. Nothing when a record has no
/// usable directions or `alignment` has no inverse.
[[nodiscard]] std::optional<HeaderAlignment>
computeHeaderAlignment(const FMRPositionInfo& vmr, const FMRPositionInfo& functional,
                       const C3dMatrix& alignment);

/// S * inverse(A): from a point of the anatomical frame, in millimetres, to an offset in voxels
/// from the centre of the functional stack. Nothing when a pixel size or the slice distance is not
/// above 0, or A has no inverse.
[[nodiscard]] std::optional<C3dMatrix> vmrToFunctionalMatrix(const C3dMatrix& aligned,
                                                             const VolumeGeometry& geometry);

/// Where the voxels of a cube lie in a run. Built once, used for each volume.
struct CubeMapping {
    C3dMatrix cubeToFunctional; ///< cube voxel to functional voxel, both from 0
    C3dMatrix functionalToCube;
    /// Of a cube in Talairach space, to be undone first: the matrices are for the AC-PC cube.
    std::optional<TalairachScaling> talairach{};

    /// Not rounded, and not limited to what there is.
    [[nodiscard]] C3dVector functionalPlace(const C3dVector& cubePoint) const {
        return cubeToFunctional * (talairach ? talairach->toACPC(cubePoint) : cubePoint);
    }
    [[nodiscard]] C3dVector cubePlace(const C3dVector& functionalPoint) const {
        const C3dVector point = functionalToCube * functionalPoint;
        return talairach ? talairach->toTalairach(point) : point;
    }
};

/// From vmrToFunctionalMatrix(): the centre of the cube is 127.5, that of the functional grid
/// (n - 1) / 2 along each axis. `mirrorSlices` counts the slices from the other end. Nothing when
/// the matrix has no inverse.
[[nodiscard]] std::optional<CubeMapping>
cubeMapping(const C3dMatrix& vmrToFunctional, const VolumeGeometry& geometry, bool mirrorSlices);

/// A coordinate as the number of its voxel: rounded, halves up. Far values stay within int.
[[nodiscard]] int nearestVoxel(float coordinate);
