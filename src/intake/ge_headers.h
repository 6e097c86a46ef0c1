// Headers of the raw GE files: image files (GE_I) and P files.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "intake/header_sizes.h"

#include <cstdint>
#include <span>

inline constexpr int geIHeaderBytes = 7904; ///< before the samples

/// Sizes from the image header, whose offset is stored at offset 148; all numbers are big-endian.
/// Nothing when the header reaches beyond the end.
[[nodiscard]] std::optional<HeaderSizes> parseGEIHeader(std::span<const uint8_t> bytes);

/// Copies the sizes of a file into the project. After a message, when the file can't be opened or
/// holds no image header, the project stays as it was.
void readGEIHeader(const QString& fileName, FMRProject& project);

/// Searches the words for "FOV", "slice thick", "skip" and "pixel size"; the next word is skipped,
/// whatever it is, and the one after it is the number. The last occurrence with a number wins.
[[nodiscard]] HeaderSizes parsePFileHeader(const QString& text);

/// Copies the sizes of a file into the project; sizes missing from it stay. All stay, after a
/// message, when the file can't be opened.
void readPFileHeader(const QString& fileName, FMRProject& project);
