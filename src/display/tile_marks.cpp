// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/tile_marks.h"

#include "display/overlay_legend.h"

#include <QPainter>

namespace {

const QColor lineColor(44, 48, 56);

void paintBorders(QPainter& painter, const MosaicTiles& tiles) {
    const QRectF& area = tiles.area;
    painter.setPen(QPen(lineColor, 0));
    for (int column = 1; column < tiles.layout.MosaicColumns; ++column) {
        const double x = area.left() + column * area.width() / tiles.layout.MosaicColumns;
        painter.drawLine(QPointF(x, area.top()), QPointF(x, area.bottom()));
    }
    for (int row = 1; row < tiles.layout.MosaicRows; ++row) {
        const double y = area.top() + row * area.height() / tiles.layout.MosaicRows;
        painter.drawLine(QPointF(area.left(), y), QPointF(area.right(), y));
    }
}

} // namespace

void paintLabel(QPainter& painter, const QRectF& ground, const QString& text) {
    painter.fillRect(ground, labelGround);
    painter.drawText(ground, Qt::AlignCenter, text);
}

void paintTileMarks(QPainter& painter, const MosaicTiles& tiles, const PatientSides& sides,
                    const QRectF& visible, const QFont& font) {
    if (tiles.isEmpty())
        return;
    const QFont numbers = numberFont(font, 0.8);
    const QFontMetrics metrics(numbers);
    const int digits = int(QString::number(tiles.nrOfSlices).size());
    const QSize number(metrics.horizontalAdvance(QString(digits, '0')) + 4, metrics.height());
    const QSize letter(metrics.horizontalAdvance('0') + 4, metrics.height());
    paintBorders(painter, tiles);
    painter.setFont(numbers);
    painter.setPen(labelColor);
    for (int place = 0; place < tiles.places(); ++place) {
        const QRectF tile = tiles.tile(place) & visible;
        // On very small tiles the labels would hide the slices.
        if (number.width() * 3 > tile.width() || number.height() * 3 > tile.height())
            continue;
        const QString slice =
            QString::number(sliceAtPlace(tiles.layout, place, tiles.nrOfSlices) + 1);
        paintLabel(painter, QRectF({tile.left() + 2, tile.bottom() - number.height() - 1}, number),
                   slice.rightJustified(digits));
        if (!sides.known())
            continue;
        paintLabel(painter, QRectF({tile.left() + 2, tile.top() + 1}, letter), sides.atLeft);
        paintLabel(painter, QRectF({tile.right() - letter.width() - 1, tile.top() + 1}, letter),
                   sides.atRight);
    }
}

void paintVoxelCross(QPainter& painter, const MosaicTiles& tiles, const VoxelPosition& voxel) {
    const int place = placeOfSlice(tiles.layout, voxel.slice, tiles.nrOfSlices);
    if (tiles.isEmpty() || place < 0)
        return;
    const QRectF area = tiles.areaOf(place, {voxel.x, voxel.y, 1, 1});
    constexpr double gap = 2; // the voxel itself stays free
    constexpr double arm = 6;
    const QPointF centre = area.center();
    const double x = area.width() / 2 + gap;
    const double y = area.height() / 2 + gap;
    const QLineF arms[] = {{centre + QPointF(x, 0), centre + QPointF(x + arm, 0)},
                           {centre - QPointF(x, 0), centre - QPointF(x + arm, 0)},
                           {centre + QPointF(0, y), centre + QPointF(0, y + arm)},
                           {centre - QPointF(0, y), centre - QPointF(0, y + arm)}};
    // Seen on dark and on bright ground.
    for (const QPen& pen : {QPen(Qt::black, 3), QPen(Qt::white, 1)}) {
        painter.setPen(pen);
        painter.drawLines(arms, std::size(arms));
    }
}
