// The mean signal of regions, and making a region from voxels.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "regions/regions.h"
#include "volume/fmr_project.h"

/// Adds a region with these voxels, which must not be empty and must lie inside the volume, with
/// the rectangle stored from 1 and the choices of `options` for new regions. NrOfValues is the
/// number of the project's volumes; the time course is filled for the first `nrOfVolumes` of them.
RegionOfInterest& createROIFromVoxels(Regions& regions, const FMRProject& project, int nrOfVolumes,
                                      VoxelList voxels, const VoxelRectangle& rectangle,
                                      const RegionOptions& options);

/// The positions in the voxel list of the voxels in use: empty for all. With BestVoxelSelection, at
/// least 2 voxels, TopVoxelRatio below 1 and a sorted list, the first max(1, round(NrOfVoxels *
/// TopVoxelRatio)) of that list.
[[nodiscard]] std::span<const int> voxelsInUse(const RegionOfInterest& region,
                                               bool bestVoxelSelection);

/// Rewrites the whole curve of a region for the volumes 0 to nrOfVolumes - 1, limited to what there
/// is: the sum over the voxels in use divided by their number. Sets CurrentTimePoint.
void updateTimeCourse(RegionOfInterest& region, const FMRProject& project, int nrOfVolumes,
                      bool bestVoxelSelection);

/// True when the voxel lies in a volume of this size.
[[nodiscard]] bool isInside(const VolumeSize& size, int x, int y, int z);
