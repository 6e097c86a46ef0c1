// How regions of interest are drawn on the slices.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "display/slice_mosaic_geometry.h"
#include "regions/regions.h"
#include "run/document/region_colors.h"

#include <QImage>
#include <span>
#include <vector>

class QPainter;

/// How regions are marked in the slices, in the order of Ctrl+R.
enum class RoiDisplayStyle { Rectangles = 0, RectanglesAndMarkedVoxels = 1, MarkedVoxels = 2 };

struct RegionMarking {
    RoiDisplayStyle style = RoiDisplayStyle::RectanglesAndMarkedVoxels;
    RegionColorTable colors = builtInRegionColors();
    int MultiSliceROISelection = 1; ///< slices of a rectangle
    bool bestVoxelSelection = false;

    bool operator==(const RegionMarking&) const = default;
};

/// One region on one slice.
struct RegionFrame {
    int region = 0; ///< its number, from 0
    int slice = 0;
    QRect voxels;      ///< its rectangle, or what surrounds its voxels, inside the slice
    bool drawn = true; ///< false: only the number of the region is

    bool operator==(const RegionFrame&) const = default;
};

/// The frames of all regions, in their order and by slice. A region has its rectangle in the slices
/// that its selection covers; in the style without rectangles, and without a rectangle that lies in
/// the volume, the frames surround its voxels and are not drawn.
[[nodiscard]] std::vector<RegionFrame>
regionFrames(const Regions& regions, const RegionMarking& marking, const VolumeSize& size);

/// Mixes the colour of each region half and half into the pixels of its voxels in use, where the
/// style asks for it or the region has no rectangle. `mosaic` is of the format RGB32 and the area
/// of `tiles` is that of its pixels. Voxels outside the volume are left out.
void markRegionVoxels(QImage& mosaic, const MosaicTiles& tiles, const Regions& regions,
                      const RegionMarking& marking);

/// Draws frames and numbers, from 1, with the painter's font. `penWidth` counts in units of the
/// picture.
void drawRegionFrames(QPainter& painter, const MosaicTiles& tiles,
                      std::span<const RegionFrame> frames, const RegionColorTable& colors,
                      int penWidth);
