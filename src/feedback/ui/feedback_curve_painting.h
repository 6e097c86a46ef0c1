// The curve of a region as the subject sees it.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "feedback/feedback_curve.h"
#include "regions/ui/session_region.h"

#include <QSize>

class QPainter;

/// The curve, up to `lastVolume`, as the plot of its region shows a time course.
[[nodiscard]] PlotContent feedbackCurveContent(const FeedbackCurve& curve, int lastVolume,
                                               int nrOfVolumes, const QColor& color,
                                               const PlottedTiming& timing);
/// Draws it into the rectangle from the origin to `size`.
void paintCurveContent(QPainter& painter, QSize size, const PlotContent& content);

/// Draws the curve into the rectangle from the origin to `size`, in the colour of its region and
/// over the protocol, as the plot of the region shows its time course. Without a region nothing is
/// drawn.
void paintFeedbackCurve(QPainter& painter, QSize size, const RunSession& session,
                        const FeedbackCurve& curve);
