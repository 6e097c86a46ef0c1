// Turning slices and volumes about that a scanner stores another way round.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <span>

/// Puts `count` equal parts into the reverse order and leaves each as it is: the slices of a
/// volume, or the rows of a slice. Nothing is done for a count that does not divide the samples.
void reverseParts(std::span<int16_t> samples, int count);

/// "ImageTransformation:" of the settings: 1 turns the slice by 180 degrees, 2 flips it vertically,
/// anything else leaves it as it was read.
void transformSlice(std::span<int16_t> slice, int nrOfRows, int transformation);
