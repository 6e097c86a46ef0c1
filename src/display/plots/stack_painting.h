// Painting of stacked bars.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "display/plots/plot_layout.h"

class QPainter;

/// Paints the curves of a content that is stacked, as bars of whole pixels. Where there are more
/// points than columns of pixels, the highest bar of a column is shown: a peak is never lost, and a
/// picture costs the same for any number of points.
void paintStack(QPainter& painter, const PlotContent& content, const PlotGeometry& geometry);

/// The height of a stacked bar: the sum of its values that are finite and above 0.
[[nodiscard]] double stackHeight(const PlotContent& content, size_t point);
/// The number of points of the longest curve.
[[nodiscard]] size_t stackedPoints(const PlotContent& content);
