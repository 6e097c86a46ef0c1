// Ranges of axes, and round numbers in them.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "display/plots/plot_content.h"

struct PlotRanges {
    PlotRange x;
    PlotRange y;

    bool operator==(const PlotRanges&) const = default;
};

/// Whether the range can be shown: finite, rising, and wide enough for numbers to differ in it.
[[nodiscard]] bool isUsable(const PlotRange& range);

/// The given range of x, or else that of all points, bars and finite bands. Always usable.
[[nodiscard]] PlotRange wholeXRange(const PlotContent& content);

/// The given range of y. Without one a range with round bounds around all points, error bars and
/// horizontal lines, and around 0 where there are bars: `previous` is kept as long as the data lie
/// in it and fill at least half of it, so that an axis stands still. Always usable.
[[nodiscard]] PlotRange wholeYRange(const PlotContent& content,
                                    const std::optional<PlotRange>& previous = {});

/// Round numbers inside the range, at most `largestCount` (at least 2): 1, 2 or 5 times a power of
/// ten apart. None in a range that is not usable.
[[nodiscard]] std::vector<double> roundTicks(const PlotRange& range, int largestCount);

/// The smallest range around a usable range whose bounds are multiples of such a step, the smallest
/// one of which at most eight multiples lie inside the range. The range fills more than half of it.
[[nodiscard]] PlotRange roundedOut(const PlotRange& range);

/// The texts of ticks, all with the same number of decimals, which tell neighbours apart.
[[nodiscard]] std::vector<QString> tickTexts(const std::vector<double>& ticks);

/// Whether a mark can be shown: both of its coordinates are finite.
[[nodiscard]] bool isPlace(const QPointF& point);

/// Whether there is any finite value to show.
[[nodiscard]] bool hasData(const PlotContent& content);

/// Whether the numbers of axes would mean anything: there are data, intervals or a given range.
[[nodiscard]] bool hasAxes(const PlotContent& content);
