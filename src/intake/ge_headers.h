// Headers of the raw GE files: image files (GE_I) and P files.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "intake/header_sizes.h"

#include <cstdint>
#include <span>

inline constexpr int geIHeaderBytes = 7904; ///< in front of the samples

/// Sizes from the image header, whose start stands at offset 148; all numbers are big-endian on any
/// host. Nothing when the header lies beyond the end.
[[nodiscard]] std::optional<HeaderSizes> parseGEIHeader(std::span<const uint8_t> bytes);

/// Takes the sizes of a file into the project. After a message, when the file can't be opened or
/// holds no image header, the project stays as it was.
void readGEIHeader(const QString& fileName, FMRProject& project);

/// Looks at each word for "FOV", "slice thick", "skip" and "pixel size"; the word behind is passed,
/// whatever it is, and the next one is the number. The last statement of a size counts; one without
/// a number counts as none.
[[nodiscard]] HeaderSizes parsePFileHeader(const QString& text);

/// Takes the sizes of a file into the project; those that it doesn't state stay. After a message,
/// when the file can't be opened, all stay.
void readPFileHeader(const QString& fileName, FMRProject& project);
