// The picture of all slices with the maps painted over them.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/worker_pool.h"
#include "display/shown_maps.h"
#include "run/document/slice_images.h"
#include "run/document/slice_mosaic_layout.h"
#include "stats/thresholds.h"

#include <QImage>
#include <vector>

/// What a mosaic shows. Nothing is owned; `slices` must be set.
struct SliceMosaicSource {
    const SliceImages* slices = nullptr;
    bool showInplanes = false; ///< high-resolution slices, where there are any
    SliceMosaicLayout layout;
    ShownMaps maps; ///< empty for no overlay
    OverlayThresholds thresholds;

    /// The images that make the tiles.
    [[nodiscard]] const std::vector<QImage>& images() const {
        return showInplanes && !slices->InplanePixmaps.empty() ? slices->InplanePixmaps
                                                               : slices->SlicePixmaps;
    }
};

/// Composes the mosaic at one pixel for each pixel of the tiles. `target` gets the size columns by
/// rows of tiles, of the size of the first image; its memory is kept where the size stays.
///
/// Each voxel that OverlayColoring shows becomes a square of s x s pixels with s = tile width /
/// DimX, rounded, at ((x + column * DimX) * s, (y + row * DimY) * s), without interpolation. Maps
/// that don't have the slices' grid are not painted. False, with a null image, when there are no
/// slices or the mosaic would be too large (see sliceMosaicSize()). The threads share the tiles.
[[nodiscard]] bool composeSliceMosaic(QImage& target, const SliceMosaicSource& source,
                                      WorkerPool& workers = callersThread());
