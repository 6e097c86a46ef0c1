// The curve of a region as the subject sees it.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "feedback/feedback_curve.h"

#include <QSize>

class QPainter;
class RunSession;

/// Draws the curve into the rectangle from the origin to `size`, in the colour of its region and
/// over the protocol, as the plot of the region shows its time course. Without a region nothing is
/// drawn.
void paintFeedbackCurve(QPainter& painter, QSize size, const RunSession& session,
                        const FeedbackCurve& curve);
