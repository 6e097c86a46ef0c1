// Points and affine transformations in space.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstddef>
#include <optional>

struct C3dVector {
    float x = 0.0f;
    float y = 0.0f;
    float z = 0.0f;
};

/// 4 x 4, row-major, acting on column vectors.
class C3dMatrix {
public:
    /// The identity.
    C3dMatrix();
    [[nodiscard]] static C3dMatrix translation(float x, float y, float z);
    [[nodiscard]] static C3dMatrix scale(float x, float y, float z);
    /// Right-handed rotations about an axis, in degrees. At 0, 90, -90, 270 and 180 degrees sine
    /// and cosine are exact.
    [[nodiscard]] static C3dMatrix rotationX(float degrees);
    [[nodiscard]] static C3dMatrix rotationY(float degrees);
    [[nodiscard]] static C3dMatrix rotationZ(float degrees);

    [[nodiscard]] float& at(size_t row, size_t column) { return elements_[row * 4 + column]; }
    [[nodiscard]] float at(size_t row, size_t column) const { return elements_[row * 4 + column]; }

    /// Each element is summed in double.
    [[nodiscard]] C3dMatrix operator*(const C3dMatrix& right) const;
    /// The transformed point. Each coordinate is summed in float, from the translation to x, so
    /// that the terms shared by a row of points can be computed once without changing the result.
    [[nodiscard]] C3dVector operator*(const C3dVector& point) const;

    [[nodiscard]] C3dMatrix transpose() const;
    /// Of an affine matrix, whose last row is 0 0 0 1; computed in double. Nothing for any other,
    /// for one without an inverse within the precision of its elements, or with one that isn't
    /// finite.
    [[nodiscard]] std::optional<C3dMatrix> inverse() const;
    [[nodiscard]] bool isFinite() const;

private:
    std::array<float, 16> elements_{};
};
