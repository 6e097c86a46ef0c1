// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/plots/curve_painting.h"

#include <QPainter>
#include <algorithm>
#include <cmath>

namespace {

constexpr qsizetype mostSmoothPoints = 60;

/// Collects the heights that a curve takes in each column of pixels. The strips are whole pixels of
/// the device, which are filled several times faster than other rectangles.
class ColumnStrips {
public:
    ColumnStrips(const QRectF& area, double pixel, double width)
        : area_(area), pixel_(pixel), width_(std::max(std::round(width / pixel), 1.0) * pixel) {}

    void addLine(const QPointF& from, const QPointF& to) {
        const double left = std::max(from.x(), area_.left());
        const double right = std::min(to.x(), area_.right());
        if (!(left <= right))
            return;
        const double run = to.x() - from.x();
        const double slope = run > 0.0 ? (to.y() - from.y()) / run : 0.0;
        const auto heightAt = [&](double x) {
            return std::clamp(from.y() + (x - from.x()) * slope, area_.top() - width_,
                              area_.bottom() + width_);
        };
        const int last = columnOf(right);
        for (int column = columnOf(left); column <= last; ++column) {
            open(column);
            extend(heightAt(std::max(left, column * pixel_)));
            extend(heightAt(std::min(right, (column + 1) * pixel_)));
        }
    }

    /// In pixels of the device.
    [[nodiscard]] const QList<QRect>& finish() {
        close();
        return strips_;
    }

private:
    [[nodiscard]] int columnOf(double x) const { return int(std::floor(x / pixel_)); }
    void extend(double y) {
        top_ = isOpen_ ? std::min(top_, y) : y;
        bottom_ = isOpen_ ? std::max(bottom_, y) : y;
        isOpen_ = true;
    }
    void open(int column) {
        if (column != column_)
            close();
        column_ = column;
    }
    void append() {
        const int width = int(std::lround(width_ / pixel_));
        const int top = int(std::lround((top_ - width_ / 2) / pixel_));
        const int bottom = int(std::lround((bottom_ + width_ / 2) / pixel_));
        strips_.append(QRect(column_ - width / 2, top, width, std::max(bottom - top, 1)));
    }
    void close() {
        if (isOpen_)
            append();
        isOpen_ = false;
    }

    const QRectF area_;
    const double pixel_; ///< its size in logical pixels
    const double width_; ///< whole pixels
    QList<QRect> strips_;
    int column_ = 0;
    bool isOpen_ = false;
    double top_ = 0.0;
    double bottom_ = 0.0;
};

} // namespace

void paintCurveRun(QPainter& painter, const QPolygonF& points, const QRectF& area,
                   const CurvePen& pen) {
    if (points.size() == 1) {
        const double size = std::max(2 * pen.width, 3.0);
        painter.fillRect(QRectF(points[0] - QPointF(size, size) / 2, QSizeF(size, size)),
                         pen.color);
        return;
    }
    painter.save();
    if (points.size() <= mostSmoothPoints) {
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(pen.color, pen.width, Qt::SolidLine, Qt::FlatCap, Qt::BevelJoin));
        painter.drawPolyline(points);
    } else {
        const double pixel = 1 / painter.device()->devicePixelRatioF();
        ColumnStrips strips(area, pixel, pen.width);
        for (qsizetype i = 1; i < points.size(); ++i)
            strips.addLine(points[i - 1], points[i]);
        painter.setPen(Qt::NoPen);
        painter.setBrush(pen.color);
        painter.scale(pixel, pixel);
        painter.drawRects(strips.finish());
    }
    painter.restore();
}
