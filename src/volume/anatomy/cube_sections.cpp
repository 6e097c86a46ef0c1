// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/anatomy/cube_sections.h"

#include "base/simd_clones.h"

#include <algorithm>
#include <limits>

namespace {

constexpr size_t sectionPoints = size_t(cubeSide) * cubeSide;

int withinCube(int coordinate) {
    return std::clamp(coordinate, 0, cubeSide - 1);
}

// One functional axis along a row of the section.
struct RowCoordinates {
    float xTerm, yTerm, zTerm, translation; ///< of the first point
    float stepX, stepZ;                     ///< one of them is 0
    int count;                              ///< of voxels along the axis
    int stride;                             ///< in the volume
};

// Adds the part of this axis to the indices, or makes them outsideRun. The sum is that of
// C3dMatrix, in its order, so that each point gets the voxel of nearestVoxel(). Masks instead of
// branches, which the compiler turns into vectors.
VELO_SIMD_CLONES void addAxis(const RowCoordinates& row, int32_t* indices) {
    static_assert(outsideRun == ~0);
    const RowCoordinates axis = row;
    const float last = float(axis.count - 1);
    const float end = float(axis.count) - 0.5f;
    for (int i = 0; i < cubeSide; ++i) {
        const float x = axis.xTerm + axis.stepX * float(i);
        const float z = axis.zTerm + axis.stepZ * float(i);
        const float coordinate = x + (axis.yTerm + (z + axis.translation));
        const float above = coordinate > 0.0f ? coordinate : 0.0f;
        const float bounded = above < last ? above : last;
        const int whole = int(bounded);
        const int voxel = whole + int(bounded - float(whole) >= 0.5f);
        const int32_t index = indices[i];
        const int32_t inside =
            -(int32_t(coordinate >= -0.5f) & int32_t(coordinate < end) & int32_t(index >= 0));
        indices[i] = ((index + voxel * axis.stride) & inside) | ~inside;
    }
}

// The matrix is not that of the section's axes: each point by itself.
void mapScaledSection(const CubeMapping& mapping, const VolumeSize& functional, SectionAxis axis,
                      const CubeVoxel& cross, std::span<int32_t> indices) {
    // Each axis is scaled by itself.
    std::array<C3dVector, cubeSide> scaled;
    for (int i = 0; i < cubeSide; ++i)
        scaled[size_t(i)] = mapping.talairach->toACPC({float(i), float(i), float(i)});
    const auto inside = [](int voxel, int voxels) { return voxel >= 0 && voxel < voxels; };
    for (int row = 0; row < cubeSide; ++row)
        for (int column = 0; column < cubeSide; ++column) {
            const CubeVoxel voxel = sectionVoxel(axis, column, row, cross);
            const C3dVector point =
                mapping.cubeToFunctional * C3dVector{scaled[size_t(withinCube(voxel.x))].x,
                                                     scaled[size_t(withinCube(voxel.y))].y,
                                                     scaled[size_t(withinCube(voxel.z))].z};
            const int x = nearestVoxel(point.x);
            const int y = nearestVoxel(point.y);
            const int z = nearestVoxel(point.z);
            indices[size_t(row) * cubeSide + size_t(column)] =
                inside(x, functional.x) && inside(y, functional.y) && inside(z, functional.slices)
                    ? int32_t((size_t(z) * size_t(functional.y) + size_t(y)) *
                                  size_t(functional.x) +
                              size_t(x))
                    : outsideRun;
        }
}

} // namespace

CubeVoxel sectionVoxel(SectionAxis axis, int column, int row, const CubeVoxel& cross) {
    switch (axis) {
    case SectionAxis::X:
        return {cross.x, row, column};
    case SectionAxis::Y:
        return {row, cross.y, column};
    case SectionAxis::Z:
        break;
    }
    return {column, row, cross.z};
}

void cutSection(std::span<const uint8_t> cube, SectionAxis axis, const CubeVoxel& cross,
                std::span<uint8_t> section) {
    if (section.size() < sectionPoints || cube.size() < cubeVoxels) {
        std::ranges::fill(section, uint8_t(0));
        return;
    }
    const CubeVoxel at{withinCube(cross.x), withinCube(cross.y), withinCube(cross.z)};
    for (int outer = 0; outer < cubeSide; ++outer) {
        for (int inner = 0; inner < cubeSide; ++inner) {
            // The outer loop runs over z where that is a column: the cube is read in its order.
            const int column = axis == SectionAxis::Z ? inner : outer;
            const int row = axis == SectionAxis::Z ? outer : inner;
            const CubeVoxel voxel = sectionVoxel(axis, column, row, at);
            section[size_t(row) * cubeSide + size_t(column)] =
                cube[cubeIndex(voxel.x, voxel.y, voxel.z)];
        }
    }
}

void mapSection(const CubeMapping& mapping, const VolumeSize& functional, SectionAxis axis,
                const CubeVoxel& cross, std::span<int32_t> indices) {
    const bool countable = functional.samples() > 0 &&
                           functional.samples() <= size_t(std::numeric_limits<int32_t>::max());
    if (indices.size() < sectionPoints || !countable) {
        std::ranges::fill(indices, outsideRun);
        return;
    }
    if (mapping.talairach)
        return mapScaledSection(mapping, functional, axis, cross, indices);
    const std::array<int, 3> counts{functional.x, functional.y, functional.slices};
    const std::array<int, 3> strides{1, functional.x, int(functional.sliceSamples())};
    const bool alongX = axis == SectionAxis::Z;
    for (int row = 0; row < cubeSide; ++row) {
        int32_t* line = &indices[size_t(row) * cubeSide];
        std::fill_n(line, cubeSide, 0);
        const CubeVoxel start = sectionVoxel(axis, 0, row, cross);
        for (size_t k = 0; k < 3; ++k) {
            const auto element = [&](size_t j) { return mapping.cubeToFunctional.at(k, j); };
            addAxis({element(0) * float(start.x), element(1) * float(start.y),
                     element(2) * float(start.z), element(3), alongX ? element(0) : 0.0f,
                     alongX ? 0.0f : element(2), counts[k], strides[k]},
                    line);
        }
    }
}
