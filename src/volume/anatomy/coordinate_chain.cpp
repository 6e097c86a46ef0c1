// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/anatomy/coordinate_chain.h"

#include "volume/anatomy/vmr_volume.h"
#include "volume/vectors.h"

#include <algorithm>
#include <cmath>

namespace {

using Direction = std::array<double, 3>;

Direction inDouble(const Vector3& v) {
    return {v[0], v[1], v[2]};
}

// Headers give directions with few decimals, and centres with fewer.
bool isRightAngle(const Direction& a, const Direction& b) {
    constexpr double largestCosine = 0.05;
    return std::abs(dot(a, b)) < largestCosine;
}

bool isUnit(const Direction& direction) {
    constexpr double tolerance = 1e-6;
    return std::abs(dot(direction, direction) - 1.0) < tolerance;
}

struct Axes {
    Direction row;
    Direction column;
    Direction stack;
};

std::optional<Axes> axesOf(const FMRPositionInfo& position) {
    Axes axes{normalised(inDouble(position.rowDirection)),
              normalised(inDouble(position.columnDirection)),
              {}};
    const Direction first = inDouble(position.sliceCenterFirst);
    axes.stack = normalised(moved(inDouble(position.sliceCenterLast), first, -1.0));
    if (axes.stack == Direction{})
        axes.stack = normalised(cross(axes.row, axes.column));
    const bool usable = isUnit(axes.row) && isUnit(axes.column) && isUnit(axes.stack) &&
                        isRightAngle(axes.row, axes.column) && isRightAngle(axes.row, axes.stack) &&
                        isRightAngle(axes.column, axes.stack);
    return usable ? std::optional(axes) : std::nullopt;
}

// The scanner's (a, b, c) as (b, -c, a).
C3dMatrix scannerToInternal() {
    C3dMatrix matrix = C3dMatrix::scale(0.0f, 0.0f, 0.0f);
    matrix.at(0, 1) = 1.0f;
    matrix.at(1, 2) = -1.0f;
    matrix.at(2, 0) = 1.0f;
    return matrix;
}

// The inverse of a translation after a rotation: transpose(R) * T(-c).
C3dMatrix inverseOfFrame(const C3dMatrix& frame) {
    C3dMatrix rotation = frame;
    for (size_t axis = 0; axis < 3; ++axis)
        rotation.at(axis, 3) = 0.0f;
    return rotation.transpose() *
           C3dMatrix::translation(-frame.at(0, 3), -frame.at(1, 3), -frame.at(2, 3));
}

bool isSize(float millimetres) {
    return millimetres > 0.0f && std::isfinite(millimetres);
}

float gridCentre(int count) {
    return (float(count) - 1.0f) / 2.0f;
}

} // namespace

FMRPositionInfo centredOnGrid(const FMRPositionInfo& headers, const VolumeGeometry& geometry) {
    FMRPositionInfo position = headers;
    const Vector3 row = normalised(headers.rowDirection);
    const Vector3 column = normalised(headers.columnDirection);
    Vector3& last = position.sliceCenterLast;
    const Vector3 stack = moved(last, position.sliceCenterFirst, -1.0f);
    const double slices = std::sqrt(dot(stack, stack)) / double(geometry.sliceDistance());
    // One slice too far is exactly one slice too far: such records are computed, not measured.
    constexpr double tolerance = 0.01;
    if (std::abs(slices - geometry.NrOfSlices) < tolerance)
        last = moved(last, normalised(stack), -geometry.sliceDistance());
    for (Vector3* centre : {&position.sliceCenterFirst, &last}) {
        *centre = moved(*centre, row, -geometry.pixelSizeX / 2.0f);
        *centre = moved(*centre, column, -geometry.pixelSizeY / 2.0f);
    }
    return position;
}

std::optional<C3dMatrix> frameToScanner(const FMRPositionInfo& position) {
    const std::optional<Axes> axes = axesOf(position);
    if (!axes)
        return std::nullopt;
    C3dMatrix matrix;
    for (size_t i = 0; i < 3; ++i) {
        matrix.at(i, 0) = float(axes->row[i]);
        matrix.at(i, 1) = float(axes->column[i]);
        matrix.at(i, 2) = float(axes->stack[i]);
        matrix.at(i, 3) =
            float((double(position.sliceCenterFirst[i]) + position.sliceCenterLast[i]) / 2.0);
    }
    if (!matrix.isFinite())
        return std::nullopt;
    return matrix;
}

std::optional<HeaderAlignment> computeHeaderAlignment(const FMRPositionInfo& vmr,
                                                      const FMRPositionInfo& functional,
                                                      const C3dMatrix& alignment) {
    const std::optional<C3dMatrix> anatomicalFrame = frameToScanner(vmr);
    const std::optional<C3dMatrix> sliceFrame = frameToScanner(functional);
    const std::optional<C3dMatrix> fromAligned = alignment.inverse();
    if (!anatomicalFrame || !sliceFrame || !fromAligned)
        return std::nullopt;
    const C3dMatrix internal = scannerToInternal();
    HeaderAlignment result;
    result.fmrToVmrHeaderMatrix =
        inverseOfFrame(internal * *anatomicalFrame) * (internal * *sliceFrame);
    result.aligned = *fromAligned * result.fmrToVmrHeaderMatrix;
    if (!result.aligned.isFinite())
        return std::nullopt;
    return result;
}

std::optional<C3dMatrix> vmrToFunctionalMatrix(const C3dMatrix& aligned,
                                               const VolumeGeometry& geometry) {
    const std::optional<C3dMatrix> inverse = aligned.inverse();
    if (!inverse || !isSize(geometry.pixelSizeX) || !isSize(geometry.pixelSizeY) ||
        !isSize(geometry.sliceDistance()))
        return std::nullopt;
    const C3dMatrix matrix =
        C3dMatrix::scale(1.0f / geometry.pixelSizeX, 1.0f / geometry.pixelSizeY,
                         1.0f / geometry.sliceDistance()) *
        *inverse;
    if (!matrix.isFinite())
        return std::nullopt;
    return matrix;
}

std::optional<CubeMapping> cubeMapping(const C3dMatrix& vmrToFunctional,
                                       const VolumeGeometry& geometry, bool mirrorSlices) {
    const C3dMatrix fromCentre = C3dMatrix::scale(1.0f, 1.0f, mirrorSlices ? -1.0f : 1.0f);
    CubeMapping mapping;
    mapping.cubeToFunctional =
        C3dMatrix::translation(gridCentre(geometry.ResolutionX), gridCentre(geometry.ResolutionY),
                               gridCentre(geometry.NrOfSlices)) *
        fromCentre * vmrToFunctional *
        C3dMatrix::translation(-cubeCentre, -cubeCentre, -cubeCentre);
    const std::optional<C3dMatrix> inverse = mapping.cubeToFunctional.inverse();
    if (!inverse)
        return std::nullopt;
    mapping.functionalToCube = *inverse;
    return mapping;
}

int nearestVoxel(float coordinate) {
    constexpr double farAway = 1e9;
    if (std::isnan(coordinate))
        return -int(farAway);
    // In double, since the float next below a half would be rounded up to 1.
    return int(std::floor(std::clamp(double(coordinate), -farAway, farAway) + 0.5));
}
