// Which slice is at which place of the mosaic, and scrolling through the slices.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/document/slice_mosaic_layout.h"

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

/// True when the mosaic has a tile for each slice.
[[nodiscard]] bool allSlicesShown(const SliceMosaicLayout& layout, int nrOfSlices);

/// Adds SliceScrollForward to FirstShownSlice. Past the last slice it is 0 again; with all slices
/// shown at once it stays at the last one.
void scrollForward(SliceMosaicLayout& layout, int nrOfSlices);

/// Subtracts SliceScrollBackward; below 0 it is the last slice, also with all slices shown at once.
void scrollBackward(SliceMosaicLayout& layout, int nrOfSlices);
