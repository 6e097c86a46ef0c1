// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/section_painting.h"

#include "dialogs/appearance.h"
#include "display/tile_marks.h"

#include <QPainter>
#include <cmath>

namespace {

const QColor crossColor(236, 240, 246, 170);
const QColor nameColor(150, 156, 166);

void paintImage(QPainter& painter, const QImage& image, const QRectF& area, bool upsideDown) {
    const double pixels = area.width() * painter.device()->devicePixelRatioF();
    // Voxels of unequal size would look like structure.
    const bool wholeFactor = std::fmod(pixels, cubeSide) == 0.0;
    painter.setRenderHint(QPainter::SmoothPixmapTransform, !wholeFactor);
    painter.drawImage(area, upsideDown ? image.mirrored(false, true) : image);
}

void paintCross(QPainter& painter, const QRectF& area, const QRectF& voxel) {
    const QPointF centre = voxel.center();
    const double gap = voxel.width() / 2 + 5;
    const QLineF lines[] = {
        {QPointF(area.left(), centre.y()), QPointF(centre.x() - gap, centre.y())},
        {QPointF(centre.x() + gap, centre.y()), QPointF(area.right(), centre.y())},
        {QPointF(centre.x(), area.top()), QPointF(centre.x(), centre.y() - gap)},
        {QPointF(centre.x(), centre.y() + gap), QPointF(centre.x(), area.bottom())}};
    painter.setPen(QPen(crossColor, 0));
    painter.drawLines(lines, std::size(lines));
}

void paintLetters(QPainter& painter, const QRectF& area, const SectionSides& sides,
                  bool upsideDown) {
    const QFontMetrics metrics = painter.fontMetrics();
    const QSizeF size(metrics.horizontalAdvance('H') + 6, metrics.height());
    const auto paint = [&](const QString& letter, double x, double y) {
        if (!letter.isEmpty())
            paintLabel(painter, {{x - size.width() / 2, y - size.height() / 2}, size}, letter);
    };
    const double x = size.width() / 2 + 1;
    const double y = size.height() / 2 + 1;
    paint(sides.left, area.left() + x, area.center().y());
    paint(sides.right, area.right() - x, area.center().y());
    paint(upsideDown ? sides.bottom : sides.top, area.center().x(), area.top() + y);
    paint(upsideDown ? sides.top : sides.bottom, area.center().x(), area.bottom() - y);
}

QString placeText(SectionAxis axis, const CubeVoxel& cross) {
    return axis == SectionAxis::X   ? QString("x %1").arg(cross.x)
           : axis == SectionAxis::Y ? QString("y %1").arg(cross.y)
                                    : QString("z %1").arg(cross.z);
}

/// In the lower left corner; without the name where that would reach the letter in the middle.
void paintTitle(QPainter& painter, const QRectF& area, const SectionSides& sides, SectionAxis axis,
                const CubeVoxel& cross) {
    const QFontMetrics metrics = painter.fontMetrics();
    const double room = area.width() / 2 - metrics.height();
    const QString full = sectionTitle(sides, axis, cross);
    const QString& title = metrics.horizontalAdvance(full) < room ? full : placeText(axis, cross);
    const QSizeF size(metrics.horizontalAdvance(title) + 6, metrics.height());
    paintLabel(painter, {{area.left() + 2, area.bottom() - size.height() - 1}, size}, title);
}

} // namespace

QString sectionTitle(const SectionSides& sides, SectionAxis axis, const CubeVoxel& cross) {
    const QString place = placeText(axis, cross);
    return sides.name.isEmpty() ? place : sides.name + "  " + place;
}

void paintSection(QPainter& painter, const QImage& image, const SectionFields& fields,
                  SectionAxis axis, const SectionSides& sides, const CubeVoxel& cross,
                  const QFont& font) {
    const QRectF& area = fields.sections[size_t(axis)];
    const bool upsideDown = fields.upsideDown[size_t(axis)];
    painter.save();
    painter.setClipRect(area);
    paintImage(painter, image, area, upsideDown);
    paintCross(painter, area, fields.areaOf(axis, cross));
    painter.setFont(numberFont(font, 0.8));
    painter.setPen(labelColor);
    paintTitle(painter, area, sides, axis, cross);
    painter.setFont(numberFont(font));
    paintLetters(painter, area, sides, upsideDown);
    painter.restore();
}

void paintReadOutLines(QPainter& painter, const QRectF& area, const QString& title,
                       const std::vector<ReadOutLine>& lines, const QFont& font) {
    const QFont numbers = numberFont(font);
    const QFontMetrics texts(font);
    const QFontMetrics metrics(numbers);
    const double lineHeight = std::max(texts.height(), metrics.height());
    const double margin = lineHeight / 2;
    double names = 0;
    for (const ReadOutLine& line : lines)
        names = std::max(names, double(texts.horizontalAdvance(line.name)));
    QRectF place(area.left() + margin, area.top(), area.width() - margin, lineHeight);
    painter.save();
    painter.setFont(font);
    painter.setPen(labelColor);
    painter.drawText(place, Qt::AlignLeft | Qt::AlignVCenter,
                     texts.elidedText(title, Qt::ElideMiddle, int(place.width())));
    for (const ReadOutLine& line : lines) {
        place.translate(0, lineHeight);
        if (place.bottom() > area.bottom())
            break;
        painter.setFont(font);
        painter.setPen(nameColor);
        painter.drawText(place, Qt::AlignLeft | Qt::AlignVCenter, line.name);
        const QRectF value = place.adjusted(names + margin, 0, 0, 0);
        painter.setFont(numbers);
        painter.setPen(labelColor);
        painter.drawText(value, Qt::AlignLeft | Qt::AlignVCenter,
                         metrics.elidedText(line.text, Qt::ElideRight, int(value.width())));
    }
    painter.restore();
}
