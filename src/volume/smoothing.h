// Spatial smoothing of a volume with a Gaussian, in the space domain.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/worker_pool.h"
#include "volume/fmr_project.h"
#include "volume/gaussian_kernel.h"

/// Full widths at half maximum of a Gaussian in voxels.
struct VoxelWidths {
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;
};

/// A width in millimetres divided by pixel sizes and slice distance; infinite along an axis on
/// which the voxel has no size.
[[nodiscard]] VoxelWidths voxelWidths(const VolumeGeometry& geometry, double fwhmMillimetres);

/// Three passes over a volume, along X, then Y, then Z. Each computes sums of tap * sample in
/// float, clamps them to 0 to 32767 and rounds to whole samples (smoothing_kernels.h). A sample
/// outside the volume is replaced by the centre sample, so that borders keep their intensity. The
/// object reuses its work memory for all volumes. Results don't depend on the number of workers.
class SpatialSmoothing {
public:
    /// Smooths volume v, from 0, in place. A width of 0 gives kernels of zeros, and so a volume of
    /// zeros. False, with the volume unchanged, when the project has no such volume, the width is
    /// negative or NaN, a kernel has more than 101 taps (an unknown voxel size included), or, after
    /// a message, when memory runs out.
    [[nodiscard]] bool smoothVolume(FMRProject& project, int v, float fwhmMillimetres,
                                    WorkerPool& workers = callersThread());

    /// The same for widths in voxels. An axis whose width is not above 0 is not smoothed, apart
    /// from clamping; at least one axis has a width.
    [[nodiscard]] bool smoothVolume(FMRProject& project, int v, const VoxelWidths& widths,
                                    WorkerPool& workers = callersThread());

    /// True when no kernel has more than 101 taps and at least one axis has a width.
    [[nodiscard]] static bool isPossible(const VoxelWidths& widths);

private:
    using Kernels = std::array<GaussianKernel, 3>;

    [[nodiscard]] static bool makeKernels(const VoxelWidths& widths, Kernels& kernels);
    [[nodiscard]] bool applyKernels(FMRProject& project, int v, const Kernels& kernels,
                                    WorkerPool& workers);
    [[nodiscard]] bool allocate(const VolumeGeometry& geometry, int nrOfThreads);

    ZeroedBuffer<float> work_; ///< of each thread workFloats() in turn
};
