// The colours in which regions of interest are drawn, in the order of their numbers.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/rgb_color.h"

#include <QString>
#include <array>

inline constexpr size_t nrOfRegionColors = 20;
using RegionColorTable = std::array<RgbColor, nrOfRegionColors>;

/// Six colours that differ well, repeated.
[[nodiscard]] RegionColorTable builtInRegionColors();

/// Replaces the first entries by those of a text: a count, of which at most 20 are taken, then as
/// many triples of red, green and blue, held within 0 to 255. A triple that is not complete ends
/// it.
void takeRegionColors(const QString& text, RegionColorTable& colors);
