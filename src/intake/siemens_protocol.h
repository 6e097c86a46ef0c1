// The scanner's own protocol, a block of text lines inside a Siemens file.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "volume/fmr_project.h"

#include <cstdint>
#include <span>

/// Takes what the block states into the project: TR, inter-slice time (TR over NrOfSlices, whole
/// milliseconds) and TE, slice order, centres of the first and last slice, which are zeroed first.
/// True when the block gives slice positions.
///
/// Slice order: 1 ascending, 2 descending, 3 interleaved, 5 interleaved with an even number of
/// slices, where the scanner starts with the second slice. Software up to B17 states it in
/// hexadecimal digits behind the slices, later software in decimal ones before them.
///
/// A TR that no scanner has leaves TR and inter-slice time as they are, after a warning.
[[nodiscard]] bool parseSiemensProtocol(std::span<const uint8_t> bytes, FMRProject& project);

/// The same for a file; false with a message when it can't be opened.
[[nodiscard]] bool readSiemensProtocol(const QString& fileName, FMRProject& project);
