// What the private part of a Siemens file says: the scanner's protocol and the slice times.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "volume/fmr_project.h"

#include <cstdint>
#include <span>
#include <vector>

/// Reads the protocol, a block of text lines, into the project: TR, inter-slice time (TR over
/// NrOfSlices, whole milliseconds) and TE, slice order, centres of the first and last slice, which
/// are zeroed first. True when the block gives slice positions.
///
/// The centres are those of the first and the last image. Where the block numbers images of the
/// slices' orientation from the last slice on, they change places: the tiles of a mosaic are then
/// stored from the last slice. The slice order stays as it is stated, by the list of slices.
///
/// Slice order: 1 ascending, 2 descending, 3 interleaved, 5 interleaved with an even number of
/// slices, where the scanner starts with the second slice. Software up to B17 states it in
/// hexadecimal digits after the slices, later software in decimal ones before them.
///
/// An impossible TR leaves TR and inter-slice time unchanged, after a warning.
[[nodiscard]] bool parseSiemensProtocol(std::span<const uint8_t> bytes, FMRProject& project);

/// The same for a file; false with a message when it can't be opened.
[[nodiscard]] bool readSiemensProtocol(const QString& fileName, FMRProject& project);

/// When each slice of a mosaic was measured, in milliseconds from the start of the volume, in the
/// order of the tiles; slices of one excitation share a time. The times are doubles in element 29
/// of the block that "SIEMENS MR HEADER" reserves in group 0019, usually (0019,1029). Empty when
/// the element is missing, does not have `nrOfSlices` times, or has an invalid one: negative,
/// longer than any TR, or NaN.
[[nodiscard]] std::vector<float> siemensSliceTimes(std::span<const uint8_t> bytes, int nrOfSlices);
