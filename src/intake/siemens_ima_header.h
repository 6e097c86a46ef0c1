// The binary header in front of the samples of a Siemens ".ima" file.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/byte_reader.h"
#include "volume/fmr_project.h"

inline constexpr int imaHeaderBytes = 6144;

/// Takes slice thickness, gap and fields of view (fovColumns, fovRows) into the project; pixel
/// sizes are field of view over matrix, whatever the header's own fields say. A value that is not
/// there or can't be a length leaves what the project has.
void parseSiemensIMAHeader(std::span<const uint8_t> bytes, ByteOrder order, FMRProject& project);

/// The same for a file. One that can't be opened shows a message and changes nothing.
void readSiemensIMAHeader(const QString& fileName, ByteOrder rawDataByteOrder, FMRProject& project);
