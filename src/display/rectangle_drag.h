// Selecting voxels with the mouse.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "display/slice_mosaic_geometry.h"
#include "regions/region_selection.h"

#include <QString>

/// From one voxel to another one of the same tile; both are selected.
struct RectangleDrag {
    int place = -1; ///< of the tile
    VoxelPosition first;
    VoxelPosition last;

    /// Sorted, the far ends exclusive.
    [[nodiscard]] VoxelRectangle rectangle() const;
    [[nodiscard]] QRect voxels() const;
};

/// Ranges from 1, as the numbers on the tiles, and the number of voxels in these slices.
[[nodiscard]] QString rectangleText(const VoxelRectangle& rectangle, const SliceRange& slices);
