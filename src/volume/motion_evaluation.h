// How well a moved volume matches the target.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/memory.h"
#include "volume/motion_fit.h"

/// Compares a sparse grid of voxels: about 16 positions along each axis, excluding a border of one
/// slice and of two rows and columns. A voxel counts when its value is above 100 in the target and
/// in the moved volume.
///
/// Only these voxels and their six neighbours are resampled; the sums equal those of resampling the
/// whole volume.
class MotionEvaluator {
public:
    /// Finds the voxels of a target of grid.samples() samples. False when memory runs out.
    [[nodiscard]] bool setTarget(const VolumeGrid& grid, std::span<const int16_t> target);

    /// Sums over all voxels that count, in the order of slices, rows and columns. `source` has the
    /// size of the target.
    void evaluate(std::span<const int16_t> source, const RigidTransformation& transformation,
                  MotionEquations& equations, WorkerPool& workers = callersThread());

private:
    /// A row of the grid. Its voxels above the threshold are stored consecutively.
    struct Row {
        int y;
        int z;
        size_t first; ///< index of its first voxel
        size_t count;
    };
    struct MovedRow;
    using Gradient = std::array<float, nrOfMotionParameters>;

    [[nodiscard]] MovedRow moveRow(const VolumeSampler& sampler, const Row& row) const;
    void computeMotionGradients(const VolumeSampler& sampler,
                                const RigidTransformation& transformation, const Row& row);
    template<size_t firstRow, size_t endRow> void sumUp(MotionEquations& equations) const;
    void sumUpDifferences(MotionEquations& equations) const;

    VolumeGrid grid_;
    std::vector<Row> rows_;
    ZeroedBuffer<int> columns_; ///< of each voxel
    ZeroedBuffer<int16_t> targetValues_;
    ZeroedBuffer<int16_t> resampledValues_;
    ZeroedBuffer<Gradient> motionGradients_; ///< of the voxels that count
};

/// Spacing of the grid, in voxels, along an axis of `size` voxels.
[[nodiscard]] int motionSamplingStep(int size);
