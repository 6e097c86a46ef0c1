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

/// A new table of which no entry has been set: black.
[[nodiscard]] MultiMapColorTable unsetMultiMapColors();

/// The table that the overlay paints with, and the one of the contrasts that it is taken from.
struct OverlayColors {
    OverlayColorTable active = significanceColors();
    /// One colour for each set of maps that pass together. It keeps what it has from call to call:
    /// with n maps shown only its first 2^n - 1 entries are set.
    MultiMapColorTable MultiMapColors = unsetMultiMapColors();
};

/// Sets the entries of `table` that the colours of the first four shown maps decide; the others
/// keep their values. `count` is the number of shown maps, `colors` theirs in order.
void setMultiMapColors(MultiMapColorTable& table, const std::array<RgbColor, 4>& colors, int count);

/// Computes the tables after a change of the maps in use (contrastOfMap) or of the coding. The
/// active table is that of significance when no map is shown or `significanceColorCoding` is set;
/// else its first 15 entries are the multi-map colours and the rest stays as it is.
void updateOverlayColors(OverlayColors& colors, const ContrastDefinitions& contrasts,
                         const StatisticalMaps& maps, bool significanceColorCoding);
