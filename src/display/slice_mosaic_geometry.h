// Which slice is at which place of the mosaic, where its voxels lie, and scrolling through the
// slices.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/document/slice_mosaic_layout.h"

#include <QPointF>
#include <QRect>
#include <QSize>

/// Size in pixels of a mosaic of such tiles; empty when a count or a size is not above 0 or a side
/// would exceed maximumSliceMosaicSide.
[[nodiscard]] QSize sliceMosaicSize(const SliceMosaicLayout& layout, QSize tile);

/// Longest side of a mosaic in pixels. It bounds the memory that a settings file can ask for to
/// 1 GB.
inline constexpr int maximumSliceMosaicSide = 16384;

/// The slice at a place counted row by row; -1 for a place beyond the slices. FirstShownSlice is at
/// place 0; the slices before it follow the last one.
[[nodiscard]] int sliceAtPlace(const SliceMosaicLayout& layout, int place, int nrOfSlices);

/// The place of a slice; -1 for one that no tile shows.
[[nodiscard]] int placeOfSlice(const SliceMosaicLayout& layout, int slice, int nrOfSlices);

/// A functional voxel, all from 0.
struct VoxelPosition {
    int x = 0;
    int y = 0;
    int slice = 0;

    bool operator==(const VoxelPosition&) const = default;
};

/// Where the voxels lie on a picture of the mosaic. Tiles may have more pixels than voxels; a voxel
/// is then that share of the tile.
struct MosaicTiles {
    SliceMosaicLayout layout;
    int nrOfSlices = 0;
    QSize grid;  ///< voxels of a slice
    QRectF area; ///< of the whole mosaic, on the picture; empty where nothing is shown

    bool operator==(const MosaicTiles&) const = default;

    /// Nothing lies on an empty mosaic: no place is valid.
    [[nodiscard]] bool isEmpty() const { return area.isEmpty() || grid.isEmpty(); }
    /// Places that show a slice; they count from 0.
    [[nodiscard]] int places() const;
    [[nodiscard]] QRectF tile(int place) const;
    /// The place at a position; -1 outside the slices.
    [[nodiscard]] int placeAt(QPointF position) const;
    /// The voxel of the tile that is nearest to a position.
    [[nodiscard]] VoxelPosition nearestVoxel(int place, QPointF position) const;
    /// The area of these voxels, each side rounded to whole units of the picture.
    [[nodiscard]] QRectF areaOf(int place, const QRect& voxels) const;
};

/// True when the mosaic has a tile for each slice.
[[nodiscard]] bool allSlicesShown(const SliceMosaicLayout& layout, int nrOfSlices);

/// Adds SliceScrollForward to FirstShownSlice. Past the last slice it is 0 again; with all slices
/// shown at once it stays at the last one.
void scrollForward(SliceMosaicLayout& layout, int nrOfSlices);

/// Subtracts SliceScrollBackward; below 0 it is the last slice, also with all slices shown at once.
void scrollBackward(SliceMosaicLayout& layout, int nrOfSlices);
