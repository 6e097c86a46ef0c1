// What a plot shows, and painting it at any size.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>
#include <QPointF>
#include <QString>
#include <optional>
#include <vector>

/// A curve of equally spaced points: point i stands at PlotContent::xStart + i * xStep.
struct PlotCurve {
    QString legend; ///< empty for none
    QColor color;
    std::vector<float> values; ///< values that are not finite leave a gap
    std::vector<float> errors; ///< half lengths of the error bars, or empty
    double width = 1.5;        ///< logical pixels
};

enum class PlotMarkShape { Disc, Circle, Cross };

/// Single points, each at a place of its own: events.
struct PlotMarks {
    QString legend; ///< empty for none
    QColor color;
    PlotMarkShape shape = PlotMarkShape::Disc;
    std::vector<QPointF>
        points; ///< in the units of the axes; those that are not finite are left out
};

/// A coloured stretch of the background, in units of x: an interval of the protocol.
struct PlotBand {
    double from = 0.0;
    double to = 0.0;
    QColor color;
    QString name;

    bool operator==(const PlotBand&) const = default;
};

/// One bar of a bar plot, with its error bar.
struct PlotBar {
    QString name;
    QColor color;
    float value = 0.0f;
    float error = 0.0f;
};

/// A straight line across the plot with a short text.
struct PlotLine {
    double at = 0.0;
    Qt::Orientation orientation = Qt::Vertical;
    QColor color;
    QString text;
};

/// The range of an axis.
struct PlotRange {
    double from = 0.0;
    double to = 1.0;

    bool operator==(const PlotRange&) const = default;
};

/// Curves or bars. Ranges that are not given follow from the data.
struct PlotContent {
    QString title;
    QString xLabel;
    QString yLabel;
    QString curveLabel; ///< before a curve in the read-out, with "%i" for its number from 1
    double xStart = 0.0;
    double xStep = 1.0;
    std::vector<PlotCurve> curves;
    /// The curves are drawn as stacked bars; values below 0 count as 0.
    bool stacked = false;
    std::vector<PlotMarks> marks; ///< read out with the curves' point that they are next to
    std::vector<PlotBar> bars;    ///< a plot with bars has no curves, and names below them
    std::vector<PlotBand> bands;
    std::vector<PlotLine> lines;
    std::optional<PlotRange> xRange;
    std::optional<PlotRange> yRange;
    bool gridShown = true;
    bool legendShown = true;
    QString note; ///< shown in the middle of a plot without data: what to do or to wait for
};
