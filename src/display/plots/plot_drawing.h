// Painting a plot on any device: its ground, and its values over that.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "display/plots/plot_layout.h"

class QPainter;

/// Paints what stays while values change: background, intervals, grid, texts and numbers. Texts
/// that don't fit are left out, the axes last.
void paintPlotGround(QPainter& painter, const QRectF& area, const PlotContent& content,
                     const PlotLayout& layout);
/// Whether both contents have the same ground where their ranges and the area are the same.
[[nodiscard]] bool haveSameGround(const PlotContent& a, const PlotContent& b);
/// Paints the values over it.
void paintPlotValues(QPainter& painter, const PlotContent& content, const PlotLayout& layout);

/// A curve's or bar's colour on the dark background, where a protocol's dark colours are lightened.
[[nodiscard]] QColor readableColor(const QColor& color);

/// Where a point of a curve stands in units of x.
[[nodiscard]] double xOfPoint(const PlotContent& content, int index);
/// The index of the point that is nearest to a place in units of x, a whole number within 1e9; the
/// point need not exist.
[[nodiscard]] double pointNearX(const PlotContent& content, double x);
