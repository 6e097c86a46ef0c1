// Header of a GE I file: geometry of one image.
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
