// Resampling a volume after a rigid motion.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/worker_pool.h"
#include "volume/c3d_matrix.h"
#include "volume/fmr_project.h"

#include <span>

/// Translations in millimetres and rotations in degrees, about the centre of the volume.
struct RigidTransformation {
    float tx = 0.0f;
    float ty = 0.0f;
    float tz = 0.0f;
    float rx = 0.0f;
    float ry = 0.0f;
    float rz = 0.0f;

    /// Maps a point of the result to the source: T(-tx, -ty, -tz) Rx Ry Rz.
    [[nodiscard]] C3dMatrix matrix() const;
};

/// Sizes of a volume, and of its voxels in millimetres.
struct VolumeGrid {
    explicit VolumeGrid(const VolumeGeometry& geometry);
    VolumeGrid() = default;

    /// Columns, rows, slices.
    std::array<int, 3> size{};
    /// Pixel size X and Y, slice distance. An unknown one (not above 0) counts as 1 mm: division by
    /// 0 would put every voxel outside the volume.
    std::array<float, 3> spacing{1.0f, 1.0f, 1.0f};

    [[nodiscard]] size_t samples() const {
        return size_t(size[0]) * size_t(size[1]) * size_t(size[2]);
    }
    /// Half of the distance between the first and the last voxel, in voxels.
    [[nodiscard]] float half(size_t axis) const { return float(size[axis] - 1) * 0.5f; }
    /// Millimetres from the centre.
    [[nodiscard]] float position(size_t axis, int voxel) const {
        return (float(voxel) - half(axis)) * spacing[axis];
    }
};

/// Samples the source at the positions of the transformed volume's voxels.
///
/// Where the voxel and its next neighbour on each axis are inside, the value is interpolated
/// between eight samples, read as unsigned, in float, along x, then y, then slices, and rounded to
/// the nearest integer, halves up. Elsewhere the nearest voxel is taken: coordinates plus 0.5,
/// truncated towards 0. Outside the volume the value is 0.
class VolumeSampler {
public:
    /// `source` holds grid.samples() samples and outlives the sampler.
    VolumeSampler(const VolumeGrid& grid, std::span<const int16_t> source,
                  const RigidTransformation& transformation);

    static constexpr size_t mostColumns = 256; ///< that are sampled at once

    /// Values of one row of the result, or of a part of it: at most mostColumns, as many as
    /// `columns` has positions. `row` and `slice` are those of the row. All are in millimetres from
    /// the centre (VolumeGrid::position).
    void sampleRow(std::span<const float> columns, float row, float slice, int16_t* values) const;

private:
    VolumeGrid grid_;
    const int16_t* source_;
    C3dMatrix matrix_;
};

/// Applies the transformation to a whole volume. Both spans hold grid.samples() samples and don't
/// overlap.
void resampleVolume(const VolumeGrid& grid, std::span<const int16_t> source,
                    std::span<int16_t> destination, const RigidTransformation& transformation,
                    WorkerPool& workers = callersThread());
