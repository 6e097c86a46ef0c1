// Arithmetic of vectors of three, as positions and directions are kept.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cmath>

/// Summed in double.
template<typename Value>
[[nodiscard]] double dot(const std::array<Value, 3>& a, const std::array<Value, 3>& b) {
    return double(a[0]) * double(b[0]) + double(a[1]) * double(b[1]) + double(a[2]) * double(b[2]);
}

template<typename Value>
[[nodiscard]] std::array<Value, 3> cross(const std::array<Value, 3>& a,
                                         const std::array<Value, 3>& b) {
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

/// Of length 1. A vector without a length, or with one that is not a number, stays as it is.
template<typename Value>
[[nodiscard]] std::array<Value, 3> normalised(const std::array<Value, 3>& v) {
    const double length = std::sqrt(dot(v, v));
    if (!(length > 0.0))
        return v;
    return {Value(double(v[0]) / length), Value(double(v[1]) / length),
            Value(double(v[2]) / length)};
}

template<typename Value>
[[nodiscard]] std::array<Value, 3> moved(const std::array<Value, 3>& point,
                                         const std::array<Value, 3>& direction, Value distance) {
    return {point[0] + direction[0] * distance, point[1] + direction[1] * distance,
            point[2] + direction[2] * distance};
}
