// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/spline_resampling.h"

#include "base/simd_clones.h"

#include <algorithm>
#include <vector>

namespace {

/// Positions of a row of the result in the source, in voxels, and the values there.
struct RowOfPositions {
    explicit RowOfPositions(size_t length) : inside(length), values(length) {
        for (auto& positions : voxels)
            positions.resize(length);
    }
    std::array<std::vector<float>, 3> voxels;
    std::vector<float> inside; ///< 1, or 0
    std::vector<float> values;
};

VELO_SIMD_CLONES void movePositions(const VolumeGrid& grid, const C3dMatrix& matrix, int y, int z,
                                    RowOfPositions& row) {
    const size_t length = row.inside.size();
    std::ranges::fill(row.inside, 1.0f);
    const float py = grid.position(1, y), pz = grid.position(2, z);
    for (size_t axis = 0; axis < 3; ++axis) {
        const float perMillimetre = 1.0f / grid.spacing[axis];
        const float start = (matrix.at(axis, 0) * grid.position(0, 0) + matrix.at(axis, 1) * py +
                             matrix.at(axis, 2) * pz + matrix.at(axis, 3)) *
                                perMillimetre +
                            grid.half(axis);
        const float step = matrix.at(axis, 0) * grid.spacing[0] * perMillimetre;
        const float end = float(grid.size[axis]) - 0.5f;
        float* to = row.voxels[axis].data();
        float* inside = row.inside.data();
        for (size_t x = 0; x < length; ++x) {
            to[x] = start + step * float(int(x));
            const bool within = to[x] >= -0.5f && to[x] < end;
            inside[x] = within ? inside[x] : 0.0f;
        }
    }
}

VELO_SIMD_CLONES void storeRow(const RowOfPositions& row, int16_t* to) {
    const size_t length = row.inside.size();
    const float* values = row.values.data();
    const float* inside = row.inside.data();
    for (size_t x = 0; x < length; ++x) {
        const float bounded = std::min(std::max(values[x] * inside[x], 0.0f), 65535.0f);
        to[x] = int16_t(uint16_t(int(bounded + 0.5f)));
    }
}

} // namespace

void resampleVolume(const SplineVolume& source, std::span<int16_t> destination,
                    const RigidTransformation& transformation) {
    const VolumeGrid& grid = source.grid();
    if (source.empty() || destination.size() != grid.samples())
        return;
    const C3dMatrix matrix = transformation.matrix();
    RowOfPositions row(size_t(grid.size[0]));
    int16_t* to = destination.data();
    for (int z = 0; z < grid.size[2]; ++z)
        for (int y = 0; y < grid.size[1]; ++y, to += grid.size[0]) {
            movePositions(grid, matrix, y, z, row);
            source.sample({row.voxels[0].data(), row.voxels[1].data(), row.voxels[2].data()},
                          row.inside.size(), row.values.data());
            storeRow(row, to);
        }
}
