// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/c3d_matrix.h"

#include "volume/vectors.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

struct Turn {
    float sine;
    float cosine;
};

Turn turnBy(float degrees) {
    if (degrees == 0.0f)
        return {0.0f, 1.0f};
    if (degrees == 90.0f)
        return {1.0f, 0.0f};
    if (degrees == -90.0f || degrees == 270.0f)
        return {-1.0f, 0.0f};
    if (degrees == 180.0f)
        return {0.0f, -1.0f};
    const double radians = double(degrees) * std::numbers::pi / 180.0;
    return {float(std::sin(radians)), float(std::cos(radians))};
}

/// Rotation from axis `from` towards axis `to`.
C3dMatrix rotation(float degrees, size_t from, size_t to) {
    const Turn turn = turnBy(degrees);
    C3dMatrix matrix;
    matrix.at(from, from) = matrix.at(to, to) = turn.cosine;
    matrix.at(from, to) = -turn.sine;
    matrix.at(to, from) = turn.sine;
    return matrix;
}

} // namespace

C3dMatrix::C3dMatrix() {
    for (size_t i = 0; i < 4; ++i)
        at(i, i) = 1.0f;
}

C3dMatrix C3dMatrix::translation(float x, float y, float z) {
    C3dMatrix matrix;
    matrix.at(0, 3) = x;
    matrix.at(1, 3) = y;
    matrix.at(2, 3) = z;
    return matrix;
}

C3dMatrix C3dMatrix::scale(float x, float y, float z) {
    C3dMatrix matrix;
    matrix.at(0, 0) = x;
    matrix.at(1, 1) = y;
    matrix.at(2, 2) = z;
    return matrix;
}

C3dMatrix C3dMatrix::rotationX(float degrees) {
    return rotation(degrees, 1, 2);
}

C3dMatrix C3dMatrix::rotationY(float degrees) {
    return rotation(degrees, 2, 0);
}

C3dMatrix C3dMatrix::rotationZ(float degrees) {
    return rotation(degrees, 0, 1);
}

C3dMatrix C3dMatrix::operator*(const C3dMatrix& right) const {
    C3dMatrix product;
    for (size_t row = 0; row < 4; ++row) {
        for (size_t column = 0; column < 4; ++column) {
            double sum = 0.0;
            for (size_t k = 0; k < 4; ++k)
                sum += double(at(row, k)) * right.at(k, column);
            product.at(row, column) = float(sum);
        }
    }
    return product;
}

C3dVector C3dMatrix::operator*(const C3dVector& point) const {
    const auto coordinate = [&](size_t row) {
        return at(row, 0) * point.x + (at(row, 1) * point.y + (at(row, 2) * point.z + at(row, 3)));
    };
    return {coordinate(0), coordinate(1), coordinate(2)};
}

C3dMatrix C3dMatrix::transpose() const {
    C3dMatrix transposed;
    for (size_t row = 0; row < 4; ++row) {
        for (size_t column = 0; column < 4; ++column)
            transposed.at(column, row) = at(row, column);
    }
    return transposed;
}

// The rows of the inverse of three columns a, b, c are b x c, c x a and a x b, divided by the
// volume that the columns span.
std::optional<C3dMatrix> C3dMatrix::inverse() const {
    using Column = std::array<double, 3>;
    const auto column = [&](size_t k) { return Column{at(0, k), at(1, k), at(2, k)}; };
    const Column a = column(0), b = column(1), c = column(2), shift = column(3);
    const bool affine =
        at(3, 0) == 0.0f && at(3, 1) == 0.0f && at(3, 2) == 0.0f && at(3, 3) == 1.0f;
    const std::array<Column, 3> rows{cross(b, c), cross(c, a), cross(a, b)};
    const double volume = dot(a, rows[0]);
    // Elements are exact to 6e-8, so that columns which span less than this may lie in a plane.
    constexpr double smallestShare = 1e-6;
    const double box = std::sqrt(dot(a, a)) * std::sqrt(dot(b, b)) * std::sqrt(dot(c, c));
    if (!affine || !isFinite() || !(std::abs(volume) > smallestShare * box))
        return std::nullopt;
    C3dMatrix inverted;
    for (size_t row = 0; row < 3; ++row) {
        for (size_t k = 0; k < 3; ++k)
            inverted.at(row, k) = float(rows[row][k] / volume);
        inverted.at(row, 3) = float(-dot(rows[row], shift) / volume);
    }
    if (!inverted.isFinite())
        return std::nullopt;
    return inverted;
}

bool C3dMatrix::isFinite() const {
    return std::ranges::all_of(elements_, [](float element) { return std::isfinite(element); });
}
