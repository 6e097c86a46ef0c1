// The colours in which regions of interest are drawn, in the order of their numbers.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/rgb_color.h"

#include <QString>
#include <array>

inline constexpr size_t nrOfRegionColors = 20;
using RegionColorTable = std::array<RgbColor, nrOfRegionColors>;

/// Six distinct colours, repeated.
[[nodiscard]] RegionColorTable builtInRegionColors();

/// The colour of a region by its number, from 0: the first six in turn.
[[nodiscard]] const RgbColor& regionColor(const RegionColorTable& colors, int number);

/// Replaces the first entries by those of a text: a count, at most 20 of which are used, then as
/// many triples of red, green and blue, clamped to 0 to 255. Stops at an incomplete triple.
void parseRegionColors(const QString& text, RegionColorTable& colors);
