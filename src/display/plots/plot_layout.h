// Where the parts of a plot stand.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "display/plots/plot_ranges.h"

#include <QFont>
#include <QRectF>

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
    /// The other way round. Places far outside are moved nearer, since a painter's numbers are
    /// limited.
    [[nodiscard]] double positionOfX(double value) const;
    [[nodiscard]] double positionOfY(double value) const;
};

struct PlotTick {
    double at = 0.0;
    QString text;
};

/// An entry of the legend; a band has a square, a curve a line, marks their shape.
struct PlotLegendEntry {
    QRectF mark;
    QRectF text;
    QString name;
    QColor color;
    bool isBand = false;
    std::optional<PlotMarkShape> shape = {};
};

/// The places of texts are empty where a text is left out.
struct PlotLayout {
    PlotGeometry geometry;
    QFont textFont;
    QFont numberFont;
    QRectF title;
    QRectF xLabel;
    QRectF yLabel; ///< turned, to be read from below
    std::vector<PlotLegendEntry> legend;
    std::vector<PlotTick> xTicks; ///< none for bars, which have names
    std::vector<PlotTick> yTicks;
};

/// Numbers have a fixed width and their room doesn't follow the range, so that the axes stand still
/// while a curve grows. A small plot has neither legend nor labels, and fewer ticks.
[[nodiscard]] PlotLayout layOutPlot(const QRectF& area, const PlotContent& content,
                                    const PlotRanges& ranges, const QFont& font);
