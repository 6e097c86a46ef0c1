// Finding the samples of a DICOM file without reading its header.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/byte_reader.h"

#include <optional>

/// Which pixel key counts where a file holds more than one.
enum class PixelKeySearch {
    First, ///< files of one slice
    Last,  ///< mosaics
};

struct PixelData {
    size_t valueOffset = 0; ///< of the first sample; may be beyond the end of a truncated file
    ByteOrder byteOrder = ByteOrder::Little; ///< as the key states it
    /// Bytes of the value as the element states them; nothing where the file ends before.
    std::optional<uint32_t> statedLength;

    /// Of undefined length: a sequence of compressed fragments.
    [[nodiscard]] bool encapsulated() const { return statedLength == 0xFFFFFFFF; }
};

/// Searches every even offset for the pixel key. Nothing without one.
[[nodiscard]] std::optional<PixelData> findPixelData(std::span<const uint8_t> bytes,
                                                     PixelKeySearch search);

/// The bytes from the value offset on; empty when that is beyond the end.
[[nodiscard]] std::span<uint8_t> pixelBytes(std::span<uint8_t> bytes, const PixelData& pixelData);

/// Swaps the two bytes of each 16-bit sample; an odd last byte stays.
void swapSamples(std::span<uint8_t> samples);

/// The same if the byte order is not that of this machine.
void toHostOrder(std::span<uint8_t> samples, ByteOrder order);
