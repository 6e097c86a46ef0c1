// SPDX-License-Identifier: GPL-3.0-or-later
#include "feedback/ui/subject_picture.h"

#include "feedback/frames/frame_painting.h"

#include <QPainter>

QRectF pictureArea(const SubjectPicture& picture, QSize area) {
    const QSizeF scaled = QSizeF(picture.size).scaled(QSizeF(area), Qt::KeepAspectRatio);
    // At a whole pixel: a line at the edge would fall between two.
    return {QPoint((area.width() - int(scaled.width())) / 2,
                   (area.height() - int(scaled.height())) / 2),
            scaled};
}

void paintSubjectPicture(QPainter& painter, QSize area, const SubjectPicture& picture) {
    painter.fillRect(QRect(QPoint(), area), Qt::black);
    if (picture.size.isEmpty())
        return;
    const QRectF place = pictureArea(picture, area);
    const double scale = place.width() / picture.size.width();
    painter.save();
    painter.translate(place.topLeft());
    painter.scale(scale, scale);
    painter.setClipRect(QRect(QPoint(), picture.size));
    paintFeedbackFrame(painter, picture.size, picture.frame);
    if (picture.frame.kind == FeedbackFrame::Kind::TimeCourse && picture.paintCurve)
        picture.paintCurve(painter, picture.size);
    painter.restore();
}
