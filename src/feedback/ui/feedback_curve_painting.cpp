// SPDX-License-Identifier: GPL-3.0-or-later
#include "feedback/ui/feedback_curve_painting.h"

#include "display/plots/plot_drawing.h"
#include "regions/ui/session_region.h"

#include <QPainter>

void paintFeedbackCurve(QPainter& painter, QSize size, const RunSession& session,
                        const FeedbackCurve& curve) {
    const std::optional<PlottedRegion> plotted = regionOfSession(session, curve.region);
    if (!plotted)
        return;
    // The region with another curve: that of a combination of regions.
    RegionOfInterest shown;
    shown.TimeCourseValues = curve.values;
    shown.TimeCourseValues.resize(size_t(plotted->region.NrOfValues()));
    const int last = std::min(plotted->lastVolume, int(curve.values.size()) - 1);
    const PlottedTiming timing = timingOfRegion(session, curve.region);
    const PlotContent content =
        timeCourseContent({shown, curve.region, plotted->color, last, plotted->voxelsInUse},
                          timing.protocol, timing.TR, {}, {});
    const QRectF area(QPointF(), size);
    const PlotLayout layout =
        layOutPlot(area, content, {wholeXRange(content), wholeYRange(content)}, painter.font());
    paintPlotGround(painter, area, content, layout);
    paintPlotValues(painter, content, layout);
}
