// Drawing the frames of the subject's display.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "feedback/feedback_frame.h"

#include <QImage>
#include <QSize>

class QPainter;

/// Draws the frame into the rectangle from the origin to `size`. All positions follow from the size
/// by integer divisions; text is in the application's font. Of a TimeCourse frame only the black
/// ground is drawn.
void paintFeedbackFrame(QPainter& painter, QSize size, const FeedbackFrame& frame);
