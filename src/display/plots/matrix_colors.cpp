// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/plots/matrix_colors.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace {

/// Colours from 0 to the strongest, equally spaced; brightness rises all the way.
constexpr std::array<std::array<int, 3>, 5> positiveColors = {
    {{38, 44, 52}, {140, 34, 24}, {228, 84, 14}, {255, 184, 40}, {255, 250, 196}}};
constexpr std::array<std::array<int, 3>, 5> negativeColors = {
    {{38, 44, 52}, {26, 58, 156}, {22, 118, 226}, {62, 200, 248}, {212, 250, 255}}};

QRgb between(const std::array<std::array<int, 3>, 5>& colors, double share) {
    const double place = share * double(colors.size() - 1);
    const size_t index = std::min(size_t(place), colors.size() - 2);
    const double part = place - double(index);
    const auto channel = [&](size_t i) {
        return int(std::lround(colors[index][i] * (1 - part) + colors[index + 1][i] * part));
    };
    return qRgb(channel(0), channel(1), channel(2));
}

} // namespace

QRgb matrixLevelColor(int level) {
    const bool positive = level >= nrOfMatrixLevels;
    const int strength = positive ? level - nrOfMatrixLevels : nrOfMatrixLevels - 1 - level;
    return between(positive ? positiveColors : negativeColors,
                   double(strength) / (nrOfMatrixLevels - 1));
}

int matrixLevel(double value, const PlotRange& range) {
    if (std::isnan(value))
        return -1;
    constexpr int levels = 2 * nrOfMatrixLevels;
    const double share = (value - range.from) / (range.to - range.from);
    return int(std::clamp(share * levels, 0.0, double(levels - 1)));
}
