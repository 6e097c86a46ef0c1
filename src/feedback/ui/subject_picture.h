// What the subject is shown, at any size.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "feedback/feedback_frame.h"

#include <QRectF>
#include <QSize>
#include <functional>

class QPainter;

/// A frame as it is drawn at its own size, in pixels. Its curve, where the frame is one, is drawn
/// over it at the same size.
struct SubjectPicture {
    FeedbackFrame frame;
    QSize size;
    std::function<void(QPainter&, QSize)> paintCurve;
};

/// Where a picture stands in an area: as large as the ratio of its sides allows, in the middle.
[[nodiscard]] QRectF pictureArea(const SubjectPicture& picture, QSize area);
/// Draws it there, at the painter's own resolution, with black beside it. A picture without a size
/// leaves the area black.
void paintSubjectPicture(QPainter& painter, QSize area, const SubjectPicture& picture);
