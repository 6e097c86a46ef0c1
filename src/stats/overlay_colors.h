// The colour tables of the map overlay.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/rgb_color.h"
#include "stats/contrasts.h"
#include "stats/statistical_maps.h"

#include <array>

inline constexpr int nrOfOverlayColors = 20;
inline constexpr int nrOfMultiMapColors = 15;
using OverlayColorTable = std::array<RgbColor, nrOfOverlayColors>;
using MultiMapColorTable = std::array<RgbColor, nrOfMultiMapColors>;

/// Entries 0 to 9 code positive values from orange to yellow, 10 to 19 negative ones from blue to
/// green, each from weak to strong.
[[nodiscard]] OverlayColorTable significanceColors();

/// A new table with no entry set: all black.
[[nodiscard]] MultiMapColorTable unsetMultiMapColors();

/// The table that the overlay paints with, and the multi-map table behind it.
struct OverlayColors {
    OverlayColorTable active = significanceColors();
    /// One colour for each combination of maps that pass. With n maps shown only the first 2^n - 1
    /// entries are set; the others keep their values from earlier calls.
    MultiMapColorTable MultiMapColors = unsetMultiMapColors();
};

/// Sets the entries of `table` for combinations of the shown maps; the others keep their values.
/// `count` is the number of shown maps, `colors` holds their colours in order.
void setMultiMapColors(MultiMapColorTable& table, const std::array<RgbColor, 4>& colors, int count);

/// Recomputes the tables after a change of the maps in use (contrastOfMap) or of the coding. The
/// active table is significanceColors() when no map is shown or `significanceColorCoding` is set;
/// else its first 15 entries are the multi-map colours and the rest is unchanged.
void updateOverlayColors(OverlayColors& colors, const ContrastDefinitions& contrasts,
                         const StatisticalMaps& maps, bool significanceColorCoding);
