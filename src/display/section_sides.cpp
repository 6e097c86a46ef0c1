// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/section_sides.h"

#include <array>
#include <cmath>
#include <tuple>
#include <utility>

namespace {

/// A direction in patient coordinates, which grow to the left, the back and the head.
using Direction = std::array<float, 3>;

/// Of a step in the cube, not normalised; zero where it isn't known.
Direction directionOf(const AnatomicalCube& cube, const CubeVoxel& step) {
    const auto along = [&step](float x, float y, float z) {
        return x * float(step.x) + y * float(step.y) + z * float(step.z);
    };
    if (cube.spaces.cubeToScanner) {
        const C3dMatrix& matrix = *cube.spaces.cubeToScanner;
        const auto row = [&](size_t r) {
            return along(matrix.at(r, 0), matrix.at(r, 1), matrix.at(r, 2));
        };
        return {row(0), row(1), row(2)};
    }
    const CubeSpace space = cube.spaces.cube;
    if (space != CubeSpace::ACPC && space != CubeSpace::Talairach)
        return {};
    constexpr int neurological = 2;
    const float toTheLeft = cube.volume.LeftRightConvention == neurological ? -1.0f : 1.0f;
    return {along(0, 0, toTheLeft), along(1, 0, 0), along(0, -1, 0)};
}

/// The patient axis within 45 degrees; -1 without one, also for what is no direction.
int nearestPatientAxis(const Direction& direction) {
    constexpr float cosineOf45Degrees = 0.70710678f;
    const float length = std::hypot(direction[0], direction[1], direction[2]);
    for (size_t axis = 0; axis < direction.size(); ++axis)
        if (std::isfinite(length) && std::fabs(direction[axis]) > cosineOf45Degrees * length)
            return int(axis);
    return -1;
}

/// The letters where an axis of the cube begins and ends.
std::pair<QString, QString> sidesAlong(const Direction& direction) {
    static constexpr std::pair<const char*, const char*> letters[] = {
        {"R", "L"}, {"A", "P"}, {"F", "H"}};
    const int axis = nearestPatientAxis(direction);
    if (axis < 0)
        return {};
    const auto& [low, high] = letters[axis];
    if (direction[size_t(axis)] > 0.0f)
        return {low, high};
    return {high, low};
}

} // namespace

SectionSides sectionSides(const AnatomicalCube& cube, SectionAxis axis) {
    static constexpr const char* names[] = {"Sagittal", "Coronal", "Transversal"};
    constexpr CubeVoxel origin{0, 0, 0};
    const CubeVoxel through{axis == SectionAxis::X, axis == SectionAxis::Y, axis == SectionAxis::Z};
    const auto along = [&](int column, int row) {
        return sidesAlong(directionOf(cube, sectionVoxel(axis, column, row, origin)));
    };
    SectionSides sides;
    std::tie(sides.left, sides.right) = along(1, 0);
    std::tie(sides.top, sides.bottom) = along(0, 1);
    if (const int normal = nearestPatientAxis(directionOf(cube, through)); normal >= 0)
        sides.name = names[normal];
    return sides;
}
