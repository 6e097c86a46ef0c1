// The cube of functional intensities: what _EPI.vmr and _Inplane.vmr hold.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "volume/anatomy/coordinate_chain.h"
#include "volume/anatomy/vmr_volume.h"

#include <cstdint>
#include <span>

/// What fills a cube: slices of 16-bit samples, read as unsigned; x fastest, then y, then slices.
struct FunctionalSlices {
    std::span<const int16_t> samples; ///< geometry.volumeSamples() of them
    VolumeGeometry geometry;
    int low = 0; ///< the window that brings samples to intensities, as that of the slices' images
    int high = 1;
    /// FlipSliceOrderInVolumeView, for runs whose headers don't state the order of the slices.
    bool mirrorSlices = false;
};

/// Where the voxels of that cube lie in the run: no rotation, cube Z along functional columns (x),
/// cube Y along the slices, cube X along functional rows (y). Nothing when a size isn't above 0.
[[nodiscard]] std::optional<CubeMapping> functionalCubeMapping(const VolumeGeometry& geometry,
                                                               bool mirrorSlices);

/// Clears the cube of `volume` and fills it with trilinear values in the window's range, 0 to 225.
/// A voxel that no functional voxel covers stays 0; the outer half of a border voxel continues its
/// value.
/// DimX to DimZ become 256, the offsets 0. False when memory runs out or a size isn't above 0.
[[nodiscard]] bool mapFunctionalToCube(const FunctionalSlices& slices, VMRVolume& volume);
