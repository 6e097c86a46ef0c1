// Sections through the cube, and the voxels of the run that they show.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/anatomy/cube_sections.h"

#include <gtest/gtest.h>
#include <limits>

namespace {

constexpr size_t points = size_t(cubeSide) * cubeSide;

C3dVector pointOf(SectionAxis axis, int column, int row, const CubeVoxel& cross) {
    const auto c = float(column), r = float(row);
    if (axis == SectionAxis::X)
        return {float(cross.x), r, c};
    if (axis == SectionAxis::Y)
        return {r, float(cross.y), c};
    return {c, r, float(cross.z)};
}

TEST(CubeSections, ShowTheVoxelsOfTheirPlane) {
    std::vector<uint8_t> cube(cubeVoxels);
    for (size_t i = 0; i < cube.size(); ++i)
        cube[i] = uint8_t((i * 2654435761u) >> 13);
    const CubeVoxel cross{17, 255, 0};
    std::vector<uint8_t> section(points);
    for (const SectionAxis axis : {SectionAxis::X, SectionAxis::Y, SectionAxis::Z}) {
        cutSection(cube, axis, cross, section);
        size_t wrong = 0;
        for (int row = 0; row < cubeSide; ++row) {
            for (int column = 0; column < cubeSide; ++column) {
                const C3dVector at = pointOf(axis, column, row, cross);
                wrong += section[size_t(row * cubeSide + column)] !=
                         cube[cubeIndex(int(at.x), int(at.y), int(at.z))];
            }
        }
        EXPECT_EQ(wrong, 0u) << int(axis);
    }
    cutSection(cube, SectionAxis::X, {-5, 0, 999}, section);
    EXPECT_EQ(section[1], cube[cubeIndex(0, 0, 1)]);
    cutSection({}, SectionAxis::X, cross, section);
    EXPECT_EQ(section, std::vector<uint8_t>(points, 0));
}

TEST(CubeSections, EachPointHasItsNearestVoxel) {
    const VolumeSize run{40, 30, 11};
    const auto straight = C3dMatrix::scale(0.25f, 0.125f, 0.0625f); // halves at many points
    const C3dMatrix oblique = C3dMatrix::translation(19.5f, 14.5f, 5.0f) *
                              C3dMatrix::scale(0.31f, 0.29f, 0.12f) * C3dMatrix::rotationX(20) *
                              C3dMatrix::rotationZ(-35) * C3dMatrix::rotationY(50) *
                              C3dMatrix::translation(-127.5f, -127.5f, -127.5f);
    std::vector<int32_t> indices(points);
    for (const C3dMatrix& matrix : {straight, oblique}) {
        for (const SectionAxis axis : {SectionAxis::X, SectionAxis::Y, SectionAxis::Z}) {
            const CubeVoxel cross{129, 120, 131};
            mapSection({matrix, {}}, run, axis, cross, indices);
            size_t wrong = 0, inside = 0;
            for (int i = 0; i < int(points); ++i) {
                const C3dVector at = matrix * pointOf(axis, i % cubeSide, i / cubeSide, cross);
                const int x = nearestVoxel(at.x), y = nearestVoxel(at.y), z = nearestVoxel(at.z);
                const bool in = x >= 0 && x < 40 && y >= 0 && y < 30 && z >= 0 && z < 11;
                inside += in;
                wrong += indices[size_t(i)] != (in ? (z * 30 + y) * 40 + x : outsideRun);
            }
            EXPECT_EQ(wrong, 0u) << int(axis);
            EXPECT_GT(inside, 100u) << int(axis);
        }
    }
}

TEST(CubeSections, NothingLiesInARunWithoutAPlace) {
    C3dMatrix undefined, far;
    undefined.at(1, 1) = std::numeric_limits<float>::quiet_NaN();
    far.at(0, 3) = 3e38f;
    for (const auto& [matrix, run] :
         std::initializer_list<std::pair<C3dMatrix, VolumeSize>>{{undefined, {64, 64, 20}},
                                                                 {far, {64, 64, 20}},
                                                                 {{}, {64, 0, 20}},
                                                                 {{}, {100000, 100000, 20}}}) {
        std::vector<int32_t> indices(points, 5);
        mapSection({matrix, {}}, run, SectionAxis::Z, {}, indices);
        EXPECT_EQ(indices, std::vector<int32_t>(points, outsideRun));
    }
}

} // namespace
