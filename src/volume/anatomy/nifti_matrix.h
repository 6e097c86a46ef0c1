// Affine matrices of NIfTI files.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <optional>

using NiftiPoint = std::array<double, 3>;

/// Three rows of four: voxel numbers, from 0, to millimetres. In double, as NIfTI-2 has them.
struct NiftiMatrix {
    std::array<std::array<double, 4>, 3> rows{};

    [[nodiscard]] NiftiPoint operator*(const NiftiPoint& point) const;
    /// The lengths of the first three columns: the sizes of a voxel.
    [[nodiscard]] NiftiPoint voxelSizes() const;
    /// Of the first three columns; negative where they are left-handed.
    [[nodiscard]] double determinant() const;
    /// Nothing when an element is NaN or above a kilometre, a voxel size is not between 0.1
    /// micrometres and 10 metres, or the columns lie in a plane.
    [[nodiscard]] std::optional<NiftiMatrix> inverse() const;
};

/// A rotation as the header has it: b, c and d of a unit quaternion whose a is not negative, and
/// -1 as the sign of the third axis where the axes are left-handed.
struct NiftiRotation {
    std::array<double, 3> quaternion{};
    double handedness = 1.0;
};

/// The rotation with the sizes of voxels as its scale, and `origin` as the place of voxel 0.
[[nodiscard]] NiftiMatrix matrixOf(const NiftiRotation& rotation, const NiftiPoint& voxelSizes,
                                   const NiftiPoint& origin);
/// Of a matrix that has an inverse and whose columns are at right angles.
[[nodiscard]] NiftiRotation rotationOf(const NiftiMatrix& matrix);
