// A volume as a B-spline: its values between the voxels.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/memory.h"
#include "volume/motion_resampling.h"
#include "volume/spline_filter.h"

#include <array>
#include <cstdint>
#include <span>

/// The interpolating B-spline of a volume (M. Unser, Splines: a perfect fit for signal and
/// image processing, IEEE Signal Processing Magazine 16(6), 1999, 22-38). At the voxels it has
/// their values. Beyond the outermost voxels the volume is continued by mirroring at them.
///
/// Along an axis it can smooth instead: the samples themselves are the coefficients. That is the
/// volume convolved with the B-spline, a bell with a standard deviation of 0.71 voxels (quintic) or
/// 0.58 (cubic). What voxels can't hold, frequencies near and beyond half a wave per voxel, is then
/// all but gone, and the values between the voxels are as sound as those at them. Beyond the
/// outermost voxels the volume then goes on with the same slope.
class SplineVolume {
public:
    /// Work space for volumes of these sizes. False, and empty, when memory runs out.
    [[nodiscard]] bool allocate(const VolumeGrid& grid, SplineDegree degree);
    [[nodiscard]] bool empty() const { return coefficients_.empty(); }
    [[nodiscard]] const VolumeGrid& grid() const { return grid_; }

    /// Along x, y and z: whether volumes are smoothed there, from the next one on.
    void smoothAlong(const std::array<bool, 3>& axes) { smoothed_ = axes; }

    /// Takes over a volume of grid.samples() samples, read as unsigned.
    void setSamples(std::span<const int16_t> samples, WorkerPool& workers = callersThread());

    /// Positions in voxels from 0, one array for each axis. Positions outside the volume are moved
    /// to its border, and those that are NaN to 0.
    struct Positions {
        const float* x;
        const float* y;
        const float* z;
    };
    /// Values at `count` positions.
    void sample(const Positions& positions, size_t count, float* values) const;

    /// Slope along an axis at a voxel, in samples per voxel.
    [[nodiscard]] float slope(size_t axis, const std::array<int, 3>& voxel) const;

private:
    [[nodiscard]] bool haveLinesFor(int nrOfThreads);
    void filterSlice(int z, const int16_t* samples, float* turned);
    void continueBesideSlice(int z);
    void filterAcrossSlices(size_t first, size_t width);
    [[nodiscard]] size_t offset(int x, int y, int z) const {
        return size_t(z + before_) * sliceStride_ + size_t(y + before_) * rowStride_ +
               size_t(x + before_);
    }

    VolumeGrid grid_;
    SplineDegree degree_ = SplineDegree::Cubic;
    std::array<bool, 3> smoothed_{};
    int before_ = 1; ///< coefficients beside the volume that its outermost voxels need
    int behind_ = 2;
    size_t rowStride_ = 0;
    size_t sliceStride_ = 0;
    ZeroedBuffer<float> coefficients_;
    ZeroedBuffer<float> lines_; ///< work space of the filter along x, for each thread
};
