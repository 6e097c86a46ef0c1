// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/overlay_colors.h"

#include <algorithm>
#include <initializer_list>

namespace {

/// The mean of colours, each channel by integer division.
RgbColor meanColor(std::initializer_list<RgbColor> colors) {
    RgbColor sum{0, 0, 0};
    for (const RgbColor& color : colors) {
        sum.red += color.red;
        sum.green += color.green;
        sum.blue += color.blue;
    }
    const int count = int(colors.size());
    return {sum.red / count, sum.green / count, sum.blue / count};
}

} // namespace

OverlayColorTable significanceColors() {
    constexpr int steps = nrOfOverlayColors / 2;
    OverlayColorTable table;
    for (int i = 0; i < steps; ++i) {
        table[size_t(i)] = {255, 75 + 20 * i, 0};
        table[size_t(steps) + size_t(i)] = {0, 75 + 20 * i, 255 - 20 * i};
    }
    return table;
}

MultiMapColorTable unsetMultiMapColors() {
    MultiMapColorTable table;
    table.fill({0, 0, 0});
    return table;
}

void setMultiMapColors(MultiMapColorTable& table, const std::array<RgbColor, 4>& colors,
                       int count) {
    const auto& [c0, c1, c2, c3] = colors;
    const MultiMapColorTable all = {
        c0,
        c1,
        RgbColor{255, 255, 0},
        c2,
        meanColor({c0, c2}),
        meanColor({c1, c2}),
        meanColor({c0, c1, c2}),
        c3,
        meanColor({c3, c0}),
        meanColor({c3, c1}),
        meanColor({c3, c2}),
        meanColor({c3, c1, c0}),
        meanColor({c3, c2, c0}),
        meanColor({c3, c2, c1}),
        meanColor({c0, c1, c2, c3}),
    };
    const int known = (1 << std::clamp(count, 0, 4)) - 1;
    std::copy_n(all.begin(), known, table.begin());
}

void updateOverlayColors(OverlayColors& colors, const ContrastDefinitions& contrasts,
                         const StatisticalMaps& maps, bool significanceColorCoding) {
    const int shown = maps.nrOfMapsToShow(contrasts.ConjunctionAnalysis);
    std::array<RgbColor, 4> mapColors;
    for (size_t i = 0; i < std::min(size_t(shown), maps.contrastOfMap.size()); ++i) {
        const size_t contrast = size_t(maps.contrastOfMap[i]);
        if (contrast < contrasts.ContrastColors.size())
            mapColors[i] = contrasts.ContrastColors[contrast];
    }
    setMultiMapColors(colors.MultiMapColors, mapColors, shown);
    if (shown == 0 || significanceColorCoding)
        colors.active = significanceColors();
    else
        std::copy(colors.MultiMapColors.begin(), colors.MultiMapColors.end(),
                  colors.active.begin());
}
