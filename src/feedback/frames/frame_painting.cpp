// SPDX-License-Identifier: GPL-3.0-or-later
#include "feedback/frames/frame_painting.h"

#include <QPainter>

void paintFeedbackFrame(QPainter& painter, QSize size, const FeedbackFrame&) {
    painter.fillRect(QRect(QPoint(), size), Qt::black);
}
