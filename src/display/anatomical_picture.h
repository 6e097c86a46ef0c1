// The three sections through a cube, with the maps painted over them.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "display/shown_maps.h"
#include "run/document/anatomy.h"
#include "stats/thresholds.h"

#include <QImage>
#include <array>

/// What the sections show. Nothing is owned; `cube` must be set.
struct AnatomicalPictureSource {
    const AnatomicalCube* cube = nullptr;
    CubeVoxel cross;
    int windowLow = 0; ///< intensities shown black and white; a window without width is a step
    int windowHigh = maximumAnatomicalIntensity;
    VolumeSize run; ///< the functional grid that the mapping of the cube leads to
    ShownMaps maps; ///< empty for no overlay
    OverlayThresholds thresholds;
};

/// By SectionAxis, each of 256 x 256 pixels: columns and rows as sectionVoxel() counts them.
using SectionImages = std::array<QImage, 3>;

/// Composes the sections through the cross, one pixel for each voxel. A pixel whose nearest
/// functional voxel OverlayColoring shows has that colour. Maps that don't have the run's grid are
/// not painted, nor are they over a cube without a mapping. The memory of the images is kept. False
/// for an empty cube, or when memory runs out.
[[nodiscard]] bool composeSections(SectionImages& images, const AnatomicalPictureSource& source);
