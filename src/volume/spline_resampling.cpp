// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/spline_resampling.h"

#include "base/simd_clones.h"

#include <algorithm>

namespace {

/// Voxels of a row that are worked on together.
constexpr size_t blockSize = 256;

/// Positions of neighbours in a row of the result in the source, in voxels, and the values there.
struct BlockOfRow {
    size_t first;
    size_t count;
    std::array<std::array<float, blockSize>, 3> voxels;
    std::array<float, blockSize> inside; ///< 1, or 0
    std::array<float, blockSize> values;
};

VELO_SIMD_CLONES void movePositions(const VolumeGrid& grid, const C3dMatrix& matrix, int y, int z,
                                    BlockOfRow& block) {
    const size_t count = block.count;
    block.inside.fill(1.0f);
    const float py = grid.position(1, y), pz = grid.position(2, z);
    for (size_t axis = 0; axis < 3; ++axis) {
        const float perMillimetre = 1.0f / grid.spacing[axis];
        const float start = (matrix.at(axis, 0) * grid.position(0, 0) + matrix.at(axis, 1) * py +
                             matrix.at(axis, 2) * pz + matrix.at(axis, 3)) *
                                perMillimetre +
                            grid.half(axis);
        const float step = matrix.at(axis, 0) * grid.spacing[0] * perMillimetre;
        const float end = float(grid.size[axis]) - 0.5f;
        float* to = block.voxels[axis].data();
        float* inside = block.inside.data();
        const int first = int(block.first);
        for (size_t i = 0; i < count; ++i) {
            to[i] = start + step * float(first + int(i));
            const bool within = to[i] >= -0.5f && to[i] < end;
            inside[i] = within ? inside[i] : 0.0f;
        }
    }
}

VELO_SIMD_CLONES void storeBlock(const BlockOfRow& block, int16_t* to) {
    const size_t count = block.count;
    const float* values = block.values.data();
    const float* inside = block.inside.data();
    for (size_t i = 0; i < count; ++i) {
        const float bounded = std::min(std::max(0.0f, values[i] * inside[i]), 65535.0f);
        to[i] = int16_t(uint16_t(int(bounded + 0.5f)));
    }
}

} // namespace

void resampleVolume(const SplineVolume& source, std::span<int16_t> destination,
                    const RigidTransformation& transformation, WorkerPool& workers) {
    const VolumeGrid& grid = source.grid();
    if (source.empty() || destination.size() != grid.samples())
        return;
    const C3dMatrix matrix = transformation.matrix();
    const size_t sizeX = size_t(grid.size[0]), sizeY = size_t(grid.size[1]);
    workers.forSlabs(sizeY * size_t(grid.size[2]), [&](size_t firstRow, size_t endRow) {
        BlockOfRow block;
        for (size_t row = firstRow; row < endRow; ++row)
            for (block.first = 0; block.first < sizeX; block.first += blockSize) {
                block.count = std::min(blockSize, sizeX - block.first);
                movePositions(grid, matrix, int(row % sizeY), int(row / sizeY), block);
                source.sample(
                    {block.voxels[0].data(), block.voxels[1].data(), block.voxels[2].data()},
                    block.count, block.values.data());
                storeBlock(block, destination.data() + row * sizeX + block.first);
            }
    });
}
