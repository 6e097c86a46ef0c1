// Arrangements of slices: tiles of one large image, and reversed order.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "scan_geometry.h"

#include <cstdint>
#include <span>
#include <vector>

/// Pixels in a row and in a column of a mosaic of all slices.
[[nodiscard]] int mosaicColumns(const ScanGeometry& geometry);
[[nodiscard]] int mosaicRows(const ScanGeometry& geometry);
/// An image of `tiles` x `tiles` slices, row by row from the top left; tiles without a slice are
/// zero. `samples` holds whole slices, no more than there are tiles.
[[nodiscard]] std::vector<uint16_t> mosaicImage(const ScanGeometry& geometry, int tiles,
                                                std::span<const uint16_t> samples);
/// The slices from the last to the first.
[[nodiscard]] std::vector<uint16_t> reversedSlices(const ScanGeometry& geometry,
                                                   std::span<const uint16_t> samples);
