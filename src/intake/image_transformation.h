// Reordering slices and volumes that a scanner stores in another orientation.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <span>

/// Reverses the order of `count` equal parts: the slices of a volume, or the rows of a slice. Does
/// nothing if `count` does not divide the samples.
void reverseParts(std::span<int16_t> samples, int count);

/// "ImageTransformation:" of the settings: 1 rotates the slice by 180 degrees, 2 flips it
/// vertically, anything else leaves it as it was read.
void transformSlice(std::span<int16_t> slice, int nrOfRows, int transformation);
