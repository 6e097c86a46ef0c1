// Painting one run of points of a curve.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>
#include <QPolygonF>

class QPainter;

struct CurvePen {
    QColor color;
    double width = 1.5; ///< logical pixels
};

/// Joins points with rising x in device coordinates of the painter; a single one becomes a dot. Few
/// points are joined by smooth lines; many by one strip for each column of pixels, which costs as
/// much as the curve is wide, however many points it has and however noisy it is.
void paintCurveRun(QPainter& painter, const QPolygonF& points, const QRectF& area,
                   const CurvePen& pen);
