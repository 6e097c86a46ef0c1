// Painting a plot on any device.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "display/plots/plot_layout.h"

class QPainter;

/// Paints the plot into the area, background included, with ticks at round numbers. Texts that
/// don't fit are left out, the axes last.
PlotGeometry paintPlot(QPainter& painter, const QRectF& area, const PlotContent& content,
                       const QFont& font);
/// The same with ranges of axes that are shown instead of the content's own.
PlotGeometry paintPlot(QPainter& painter, const QRectF& area, const PlotContent& content,
                       const PlotRanges& ranges, const QFont& font);

/// A curve's or bar's colour on the dark background, where a protocol's dark colours are lightened.
[[nodiscard]] QColor readableColor(const QColor& color);

/// Where a point of a curve stands in units of x.
[[nodiscard]] double xOfPoint(const PlotContent& content, int index);
/// The index of the point that is nearest to a place in units of x, a whole number within 1e9; the
/// point need not exist.
[[nodiscard]] double pointNearX(const PlotContent& content, double x);
