// SPDX-License-Identifier: GPL-3.0-or-later
#include "feedback/ui/feedback_curve_painting.h"

#include "display/plots/plot_drawing.h"

#include <QPainter>

PlotContent feedbackCurveContent(const FeedbackCurve& curve, int lastVolume, int nrOfVolumes,
                                 const QColor& color, const PlottedTiming& timing) {
    // A region with another curve: that of a combination of regions.
    RegionOfInterest shown;
    shown.TimeCourseValues = curve.values;
    shown.TimeCourseValues.resize(size_t(nrOfVolumes));
    const int last = std::min(lastVolume, int(curve.values.size()) - 1);
    PlotContent content = timeCourseContent({shown, curve.region, color, last, 0}, timing.protocol,
                                            timing.TR, {}, {});
    content.note.clear(); // it would tell the subject what the operator waits for
    return content;
}

void paintCurveContent(QPainter& painter, QSize size, const PlotContent& content) {
    const QRectF area(QPointF(), size);
    const PlotLayout layout =
        layOutPlot(area, content, {wholeXRange(content), wholeYRange(content)}, painter.font());
    paintPlotGround(painter, area, content, layout);
    paintPlotValues(painter, content, layout);
}

void paintFeedbackCurve(QPainter& painter, QSize size, const RunSession& session,
                        const FeedbackCurve& curve) {
    const std::optional<PlottedRegion> plotted = regionOfSession(session, curve.region);
    if (plotted)
        paintCurveContent(painter, size,
                          feedbackCurveContent(curve, plotted->lastVolume,
                                               plotted->region.NrOfValues(), plotted->color,
                                               timingOfRegion(session, curve.region)));
}
