// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/view_zoom.h"

#include <algorithm>

namespace {

/// The start of a mosaic of this length, wanted at `start`: it covers the room if it is longer, and
/// keeps its place at the factor 1 otherwise.
double inRoom(double start, double length, double roomStart, double roomLength,
              double fittedCentre) {
    if (length <= roomLength)
        return std::clamp(fittedCentre - length / 2, roomStart, roomStart + roomLength - length);
    return std::clamp(start, roomStart + roomLength - length, roomStart);
}

} // namespace

QRectF ViewZoom::area(const QRectF& fitted, const QRectF& room) const {
    if (isWhole())
        return fitted;
    const QSizeF size = fitted.size() * factor_;
    const QPointF wanted(room.center().x() - centre_.x() * size.width(),
                         room.center().y() - centre_.y() * size.height());
    return {{inRoom(wanted.x(), size.width(), room.left(), room.width(), fitted.center().x()),
             inRoom(wanted.y(), size.height(), room.top(), room.height(), fitted.center().y())},
            size};
}

void ViewZoom::zoom(double by, QPointF position, const QRectF& fitted, const QRectF& room) {
    if (fitted.isEmpty())
        return;
    const QRectF before = area(fitted, room);
    const double factor = std::clamp(factor_ * by, 1.0, largest);
    const double growth = factor / factor_;
    factor_ = factor;
    keepCentre({position + (before.topLeft() - position) * growth, before.size() * growth}, room);
}

void ViewZoom::pan(QPointF by, const QRectF& fitted, const QRectF& room) {
    keepCentre(area(fitted, room).translated(by), room);
}

void ViewZoom::keepCentre(const QRectF& area, const QRectF& room) {
    if (isWhole() || area.isEmpty())
        return reset();
    centre_ = {(room.center().x() - area.left()) / area.width(),
               (room.center().y() - area.top()) / area.height()};
}
