// When each slice of a mosaic was measured, from the scanner's private part of the header.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <span>
#include <vector>

/// The times in milliseconds from the start of the volume, in the order of the tiles. They stand in
/// element 29 of the block that "SIEMENS MR HEADER" reserves in group 0019, usually (0019,1029), as
/// doubles. Slices that were measured together have the same time. Empty when the element is not
/// there, holds another number of times than `nrOfSlices`, or one that can't
/// be: negative, longer than any TR, no number.
[[nodiscard]] std::vector<float> siemensSliceTimes(std::span<const uint8_t> bytes, int nrOfSlices);
