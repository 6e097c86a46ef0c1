// Painting a plot on any device.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "display/plots/plot_content.h"

#include <QFont>
#include <QRectF>

class QPainter;

/// Where a painted plot has its axes, and their ranges.
struct PlotGeometry {
    QRectF axes; ///< the area of the curves
    PlotRange x;
    PlotRange y;

    [[nodiscard]] double xAt(double position) const {
        return x.from + (position - axes.left()) / axes.width() * (x.to - x.from);
    }
    [[nodiscard]] double yAt(double position) const {
        return y.to - (position - axes.top()) / axes.height() * (y.to - y.from);
    }
};

/// Paints the plot into the area, background included, with ticks at round numbers. Texts that
/// don't fit are left out, the axes last.
PlotGeometry paintPlot(QPainter& painter, const QRectF& area, const PlotContent& content,
                       const QFont& font);

/// Round numbers inside the range, at most `largestCount` (at least 2): 1, 2 or 5 times a power of
/// ten apart.
[[nodiscard]] std::vector<double> roundTicks(const PlotRange& range, int largestCount);
