// Volumes of interest as regions of a functional run.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "regions/region_of_interest.h"
#include "regions/volume_of_interest.h"
#include "volume/anatomy/coordinate_chain.h"
#include "volume/anatomy/talairach_scaling.h"
#include "volume/volume_geometry.h"

#include <cstdint>
#include <optional>
#include <vector>

struct VOIMapping {
    CubeMapping cube;
    /// Set when the volumes are in Talairach space and the run's cube isn't: it is undone first.
    std::optional<TalairachScaling> talairach;
    VolumeSize functional;
};

/// One volume of interest on the functional grid.
struct MappedVOI {
    VoxelList voxels; ///< in the order of the volume; one mapped twice stands there twice
    /// Of the voxels, all from 0; 300 and 0 without one.
    int minX = 300, maxX = 0, minY = 300, maxY = 0, minZ = 300, maxZ = 0;
    /// The rounded mean of the lowest and the highest z: the slice of its region.
    int slice = 0;
    bool sliceOutOfBounds = false; ///< only where no voxel lies in the run
};

struct MappedVOIs {
    std::vector<MappedVOI> volumes; ///< one for each volume of interest
    std::vector<uint8_t> image;     ///< 256 cubed: number + 1 of the volume at each voxel
    int voxelsOutOfRange = 0;       ///< that lie outside the cube and were skipped
};

/// Each voxel of the cube goes to its nearest voxel of the run, halves up, and is left out where
/// that isn't in the run. False when memory runs out; `mapped` is then empty. Volumes from the
/// 256th on leave the image alone; of volumes that overlap it has the last.
[[nodiscard]] bool mapVOIsToFunctional(const VolumeOfInterest& volumes, const VOIMapping& mapping,
                                       MappedVOIs& mapped);
