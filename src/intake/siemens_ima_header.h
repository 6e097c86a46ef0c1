// The binary header before the samples of a Siemens ".ima" file.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/byte_reader.h"
#include "intake/header_sizes.h"

inline constexpr int imaHeaderBytes = 6144;

/// Pixels of a slice, as the settings state them.
struct ImaMatrix {
    int sizeX = 0;
    int sizeY = 0;
};

/// Slice thickness, gap and fields of view; pixel sizes are field of view over matrix, whatever the
/// header's own fields say. An unknown gap is left empty, and everything if the header is
/// truncated.
[[nodiscard]] HeaderSizes parseSiemensIMAHeader(std::span<const uint8_t> bytes, ByteOrder order,
                                                const ImaMatrix& matrix);

/// Copies the sizes of a file into the project. After a message, when the file can't be opened, the
/// project stays as it was.
void readSiemensIMAHeader(const QString& fileName, ByteOrder rawDataByteOrder, FMRProject& project);
