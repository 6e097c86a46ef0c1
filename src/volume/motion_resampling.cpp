// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/motion_resampling.h"

#include "base/simd_clones.h"

#include <bit>
#include <cassert>
#include <cmath>
#include <cstring>

namespace {

/// Voxels that are sampled together; their intermediate values stay in the cache.
constexpr size_t blockVoxels = VolumeSampler::mostColumns;

/// One coordinate along a row of the result: (factor * position + rest) / spacing + half.
struct Line {
    float factor;
    float rest;
    float spacing;
    float half;
    float last; ///< below this the next voxel is inside
};

/// Intermediate values of the voxels of a block.
struct Block {
    alignas(64) float coordinate[3][blockVoxels];
    alignas(64) float fraction[3][blockVoxels];
    alignas(64) int32_t whole[3][blockVoxels];
    alignas(64) int32_t inside[blockVoxels];
    /// Pairs of neighbours along the row: at (y, z), (y + 1, z), (y, z + 1), (y + 1, z + 1).
    alignas(64) int32_t pair[4][blockVoxels];
};

/// Positions and fractions of the voxels that lie between eight samples; 0 for the others. Returns
/// the number of the former.
VELO_SIMD_CLONES int locate(const Line& x, const Line& y, const Line& z, const float* columns,
                            size_t count, Block& block) {
    int inside = 0;
    for (size_t i = 0; i < count; ++i) {
        const float cx = (x.factor * columns[i] + x.rest) / x.spacing + x.half;
        const float cy = (y.factor * columns[i] + y.rest) / y.spacing + y.half;
        const float cz = (z.factor * columns[i] + z.rest) / z.spacing + z.half;
        // Comparisons with NaN are false.
        const int32_t in = int32_t(cx >= 0.0f) & int32_t(cx < x.last) & int32_t(cy >= 0.0f) &
                           int32_t(cy < y.last) & int32_t(cz >= 0.0f) & int32_t(cz < z.last);
        block.coordinate[0][i] = cx;
        block.coordinate[1][i] = cy;
        block.coordinate[2][i] = cz;
        block.inside[i] = in;
        inside += in;
    }
    for (size_t axis = 0; axis < 3; ++axis) {
        const float* coordinate = block.coordinate[axis];
        for (size_t i = 0; i < count; ++i) {
            const float within = block.inside[i] != 0 ? coordinate[i] : 0.0f;
            const int32_t whole = int32_t(within);
            block.whole[axis][i] = whole;
            block.fraction[axis][i] = within - float(whole);
        }
    }
    return inside;
}

// Two adjacent samples, read as unsigned.
int32_t pairAt(const int16_t* samples) {
    int32_t pair;
    static_assert(sizeof(pair) == 2 * sizeof(*samples));
    std::memcpy(&pair, samples, sizeof(pair));
    return pair;
}

float lowHalf(int32_t pair) {
    return float(pair & 0xFFFF);
}

float highHalf(int32_t pair) {
    return float(int32_t(uint32_t(pair) >> 16));
}

float first(int32_t pair) {
    return std::endian::native == std::endian::little ? lowHalf(pair) : highHalf(pair);
}

float second(int32_t pair) {
    return std::endian::native == std::endian::little ? highHalf(pair) : lowHalf(pair);
}

float between(float a, float b, float fraction) {
    return a + fraction * (b - a);
}

/// Rounds a value that is not negative, halves up. Adding 0.5 first would also round up a value
/// just below a half.
int16_t roundedUpwards(float value) {
    const int32_t whole = int32_t(value);
    return int16_t(uint16_t(whole + int32_t(value - float(whole) >= 0.5f)));
}

void gatherPairs(const int16_t* source, size_t rowSize, size_t sliceSize, size_t count,
                 Block& block) {
    for (size_t i = 0; i < count; ++i) {
        const int16_t* corner = source + size_t(block.whole[2][i]) * sliceSize +
                                size_t(block.whole[1][i]) * rowSize + size_t(block.whole[0][i]);
        block.pair[0][i] = pairAt(corner);
        block.pair[1][i] = pairAt(corner + rowSize);
        block.pair[2][i] = pairAt(corner + sliceSize);
        block.pair[3][i] = pairAt(corner + sliceSize + rowSize);
    }
}

VELO_SIMD_CLONES void interpolate(const Block& block, size_t count, int16_t* __restrict values) {
    for (size_t i = 0; i < count; ++i) {
        const float x = block.fraction[0][i];
        const float y = block.fraction[1][i];
        const auto row = [&](size_t which) {
            const int32_t pair = block.pair[which][i];
            return between(first(pair), second(pair), x);
        };
        const float near = between(row(0), row(1), y);
        const float far = between(row(2), row(3), y);
        values[i] = roundedUpwards(between(near, far, block.fraction[2][i]));
    }
}

} // namespace

C3dMatrix RigidTransformation::matrix() const {
    return C3dMatrix::translation(-tx, -ty, -tz) * C3dMatrix::rotationX(rx) *
           C3dMatrix::rotationY(ry) * C3dMatrix::rotationZ(rz);
}

VolumeGrid::VolumeGrid(const VolumeGeometry& geometry)
    : size{std::max(geometry.ResolutionX, 0), std::max(geometry.ResolutionY, 0),
           std::max(geometry.NrOfSlices, 0)},
      spacing{geometry.pixelSizeX, geometry.pixelSizeY, geometry.sliceDistance()} {
    for (float& millimetres : spacing)
        if (!(millimetres > 0.0f) || !std::isfinite(millimetres))
            millimetres = 1.0f;
}

VolumeSampler::VolumeSampler(const VolumeGrid& grid, std::span<const int16_t> source,
                             const RigidTransformation& transformation)
    : grid_(grid), source_(source.data()), matrix_(transformation.matrix()) {}

void VolumeSampler::sampleRow(std::span<const float> columns, float row, float slice,
                              int16_t* values) const {
    assert(columns.size() <= mostColumns);
    const auto line = [&](size_t axis) {
        const float rest =
            matrix_.at(axis, 1) * row + (matrix_.at(axis, 2) * slice + matrix_.at(axis, 3));
        return Line{matrix_.at(axis, 0), rest, grid_.spacing[axis], grid_.half(axis),
                    float(grid_.size[axis] - 1)};
    };
    const Line x = line(0);
    const Line y = line(1);
    const Line z = line(2);
    const size_t rowSize = size_t(grid_.size[0]);
    const size_t sliceSize = rowSize * size_t(grid_.size[1]);
    const auto nearest = [&](const Block& block, size_t i) -> int16_t {
        size_t voxel[3];
        for (size_t axis = 0; axis < 3; ++axis) {
            const float coordinate = block.coordinate[axis][i] + 0.5f;
            if (!(coordinate > -1.0f && coordinate < float(grid_.size[axis])))
                return 0;
            voxel[axis] = size_t(int(coordinate));
        }
        return source_[voxel[2] * sliceSize + voxel[1] * rowSize + voxel[0]];
    };
    Block block;
    const int inside = locate(x, y, z, columns.data(), columns.size(), block);
    // Voxels that are not inside read at voxel 0, which has eight samples if any voxel has.
    if (inside > 0) {
        gatherPairs(source_, rowSize, sliceSize, columns.size(), block);
        interpolate(block, columns.size(), values);
    }
    for (size_t i = 0; size_t(inside) < columns.size() && i < columns.size(); ++i)
        if (block.inside[i] == 0)
            values[i] = nearest(block, i);
}

void resampleVolume(const VolumeGrid& grid, std::span<const int16_t> source,
                    std::span<int16_t> destination, const RigidTransformation& transformation,
                    WorkerPool& workers) {
    const VolumeSampler sampler(grid, source, transformation);
    const size_t rowSize = size_t(grid.size[0]), sizeY = size_t(grid.size[1]);
    workers.forSlabs(sizeY * size_t(grid.size[2]), [&](size_t firstRow, size_t endRow) {
        std::array<float, blockVoxels> columns;
        for (size_t begin = 0; begin < rowSize; begin += blockVoxels) {
            const size_t count = std::min(blockVoxels, rowSize - begin);
            for (size_t i = 0; i < count; ++i)
                columns[i] = grid.position(0, int(begin + i));
            for (size_t row = firstRow; row < endRow; ++row)
                sampler.sampleRow(
                    std::span(columns).first(count), grid.position(1, int(row % sizeY)),
                    grid.position(2, int(row / sizeY)), destination.data() + row * rowSize + begin);
        }
    });
}
