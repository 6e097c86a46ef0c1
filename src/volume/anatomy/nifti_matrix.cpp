// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/anatomy/nifti_matrix.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double smallestVoxel = 1e-4; // mm
constexpr double largestVoxel = 1e4;
constexpr double largestElement = 1e6; // mm: no scanner is a kilometre long
/// Of the volume of a voxel to the product of its sides, below which it is flat.
constexpr double flat = 1e-4;

using Quaternion = std::array<double, 4>; // a, b, c, d

Quaternion completed(const std::array<double, 3>& q) {
    const double squares = q[0] * q[0] + q[1] * q[1] + q[2] * q[2];
    if (squares <= 1.0)
        return {std::sqrt(1.0 - squares), q[0], q[1], q[2]};
    // Rounded to float, half a turn may come out longer than 1.
    const double length = std::sqrt(squares);
    return {0.0, q[0] / length, q[1] / length, q[2] / length};
}

} // namespace

NiftiPoint NiftiMatrix::operator*(const NiftiPoint& point) const {
    NiftiPoint result{};
    for (size_t i = 0; i < 3; ++i)
        result[i] =
            rows[i][0] * point[0] + rows[i][1] * point[1] + rows[i][2] * point[2] + rows[i][3];
    return result;
}

NiftiPoint NiftiMatrix::voxelSizes() const {
    NiftiPoint sizes{};
    for (size_t column = 0; column < 3; ++column)
        sizes[column] = std::hypot(rows[0][column], rows[1][column], rows[2][column]);
    return sizes;
}

double NiftiMatrix::determinant() const {
    double sum = 0.0;
    for (size_t i = 0; i < 3; ++i) {
        const auto &second = rows[(i + 1) % 3], &third = rows[(i + 2) % 3];
        sum += rows[i][0] * (second[1] * third[2] - second[2] * third[1]);
    }
    return sum;
}

std::optional<NiftiMatrix> NiftiMatrix::inverse() const {
    for (const auto& row : rows)
        if (!std::ranges::all_of(row,
                                 [](double value) { return std::abs(value) <= largestElement; }))
            return std::nullopt;
    const NiftiPoint sizes = voxelSizes();
    if (!std::ranges::all_of(
            sizes, [](double size) { return size >= smallestVoxel && size <= largestVoxel; }))
        return std::nullopt;
    const double volume = determinant();
    if (std::abs(volume) < flat * sizes[0] * sizes[1] * sizes[2])
        return std::nullopt;
    NiftiMatrix result;
    // The adjugate divided by the determinant; indices modulo 3 give the cofactors their signs.
    for (size_t i = 0; i < 3; ++i)
        for (size_t j = 0; j < 3; ++j) {
            const auto &first = rows[(j + 1) % 3], &second = rows[(j + 2) % 3];
            const size_t left = (i + 1) % 3;
            const size_t right = (i + 2) % 3;
            result.rows[i][j] =
                (first[left] * second[right] - first[right] * second[left]) / volume;
        }
    const NiftiPoint shift = result * NiftiPoint{rows[0][3], rows[1][3], rows[2][3]};
    for (size_t i = 0; i < 3; ++i)
        result.rows[i][3] = -shift[i];
    return result;
}

NiftiMatrix matrixOf(const NiftiRotation& rotation, const NiftiPoint& voxelSizes,
                     const NiftiPoint& origin) {
    const auto [a, b, c, d] = completed(rotation.quaternion);
    const std::array<std::array<double, 3>, 3> turned = {
        {{1 - 2 * (c * c + d * d), 2 * (b * c - a * d), 2 * (b * d + a * c)},
         {2 * (b * c + a * d), 1 - 2 * (b * b + d * d), 2 * (c * d - a * b)},
         {2 * (b * d - a * c), 2 * (c * d + a * b), 1 - 2 * (b * b + c * c)}}};
    NiftiMatrix matrix;
    for (size_t i = 0; i < 3; ++i)
        matrix.rows[i] = {turned[i][0] * voxelSizes[0], turned[i][1] * voxelSizes[1],
                          turned[i][2] * voxelSizes[2] * rotation.handedness, origin[i]};
    return matrix;
}

NiftiRotation rotationOf(const NiftiMatrix& matrix) {
    NiftiRotation rotation;
    rotation.handedness = matrix.determinant() < 0.0 ? -1.0 : 1.0;
    const NiftiPoint sizes = matrix.voxelSizes();
    std::array<std::array<double, 3>, 3> r{};
    for (size_t i = 0; i < 3; ++i)
        for (size_t j = 0; j < 3; ++j)
            r[i][j] = matrix.rows[i][j] / sizes[j] * (j == 2 ? rotation.handedness : 1.0);
    // The diagonal gives the squares of the four components, four times each; the largest is the
    // divisor, so that no small number is divided by.
    const Quaternion squares = {1 + r[0][0] + r[1][1] + r[2][2], 1 + r[0][0] - r[1][1] - r[2][2],
                                1 - r[0][0] + r[1][1] - r[2][2], 1 - r[0][0] - r[1][1] + r[2][2]};
    // Four times the products of two components: a with b, c, d, then b with c, b with d, c with d.
    const double ab = r[2][1] - r[1][2], ac = r[0][2] - r[2][0], ad = r[1][0] - r[0][1];
    const double bc = r[0][1] + r[1][0], bd = r[0][2] + r[2][0], cd = r[1][2] + r[2][1];
    const std::array<Quaternion, 4> products = {{{squares[0], ab, ac, ad},
                                                 {ab, squares[1], bc, bd},
                                                 {ac, bc, squares[2], cd},
                                                 {ad, bd, cd, squares[3]}}};
    const size_t largest = size_t(std::ranges::max_element(squares) - squares.begin());
    const Quaternion& direction = products[largest];
    const double length =
        std::hypot(std::hypot(direction[0], direction[1]), std::hypot(direction[2], direction[3]));
    const double sign = direction[0] < 0.0 ? -1.0 : 1.0; // q and -q are one rotation
    for (size_t i = 0; i < 3; ++i)
        rotation.quaternion[i] = sign * direction[i + 1] / length;
    return rotation;
}
