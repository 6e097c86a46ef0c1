// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/document/region_colors.h"

#include "base/text_reading.h"

RegionColorTable builtInRegionColors() {
    constexpr std::array<RgbColor, 6> colors{{{255, 40, 50},
                                              {80, 255, 80},
                                              {40, 30, 255},
                                              {255, 40, 255},
                                              {80, 255, 255},
                                              {255, 255, 30}}};
    RegionColorTable table;
    for (size_t i = 0; i < table.size(); ++i)
        table[i] = colors[i % colors.size()];
    return table;
}

const RgbColor& regionColor(const RegionColorTable& colors, int number) {
    constexpr int colorsInTurn = 6;
    return colors[size_t(number % colorsInTurn)];
}

void parseRegionColors(const QString& text, RegionColorTable& colors) {
    TokenStream stream(text);
    const int count = std::clamp(stream.integer(), 0, int(nrOfRegionColors));
    const auto channel = [&stream] { return std::clamp(stream.integer(), 0, 255); };
    for (size_t i = 0; i < size_t(count); ++i) {
        const int red = channel();
        const int green = channel();
        const int blue = channel();
        if (stream.failed())
            return;
        colors[i] = {red, green, blue};
    }
}
