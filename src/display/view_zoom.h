// Which part of the mosaic a view shows, and how large.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QRectF>

/// Positions and areas are in the view's units. `fitted` is the mosaic's area when all of it is
/// shown, `room` the area that is free for it.
class ViewZoom {
public:
    static constexpr double largest = 16.0;

    [[nodiscard]] double factor() const { return factor_; }
    [[nodiscard]] bool isWhole() const { return factor_ <= 1.0; }
    void reset() { *this = ViewZoom(); }

    /// The mosaic's area. Leaves no more of the room empty than its size makes necessary.
    [[nodiscard]] QRectF area(const QRectF& fitted, const QRectF& room) const;
    /// Multiplies the factor, which stays from 1 to `largest`; what is at `position` stays there,
    /// unless a border of the mosaic would leave that of the room.
    void zoom(double by, QPointF position, const QRectF& fitted, const QRectF& room);
    /// Moves the mosaic, as far as it goes beyond the room.
    void pan(QPointF by, const QRectF& fitted, const QRectF& room);

private:
    void keepCentre(const QRectF& area, const QRectF& room);

    double factor_ = 1.0;
    QPointF centre_{0.5, 0.5}; ///< what the room's centre shows, as shares of the mosaic
};
