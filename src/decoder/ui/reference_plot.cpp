// SPDX-License-Identifier: GPL-3.0-or-later
#include "decoder/ui/reference_plot.h"

#include "dialogs/appearance.h"
#include "display/plots/plot_colors.h"

#include <QPainter>
#include <algorithm>

namespace {

/// So small that the scores of neighbouring tasks stay apart.
QFont scoreFont(const QFont& font, double width) {
    constexpr double largest = 0.8;
    constexpr double smallest = 0.55;
    const QFontMetricsF metrics(numberFont(font, largest));
    const double fitting = largest * width / metrics.horizontalAdvance("-0.00 ");
    return numberFont(font, std::clamp(fitting, smallest, largest));
}

/// A mark with the score below it and the product below that.
void paintMark(QPainter& painter, const QRectF& area, const TaskMark& mark) {
    const double line = painter.fontMetrics().lineSpacing();
    const double radius = line * 0.3;
    const QPointF centre(area.center().x(), area.top() + line * 0.5);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(mark.color);
    painter.drawEllipse(centre, radius, radius);
    if (mark.isBest) {
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(plotColors::text, 1.5));
        painter.drawEllipse(centre, radius + 2.5, radius + 2.5);
    }
    painter.setPen(mark.color);
    painter.drawText(area.adjusted(0, line, 0, 0), Qt::AlignHCenter | Qt::AlignTop, mark.score);
    painter.setPen(plotColors::quietText);
    painter.drawText(area.adjusted(0, 2 * line, 0, 0), Qt::AlignHCenter | Qt::AlignTop,
                     mark.product);
}

} // namespace

void ReferencePlot::setMarks(
    const std::optional<std::array<TaskMark, LetterCode::nrOfTasks>>& marks) {
    if (marks_ == marks)
        return;
    marks_ = marks;
    contentChanged();
}

QSize ReferencePlot::minimumSizeHint() const {
    return {130, 90};
}

QSize ReferencePlot::sizeHint() const {
    return {160, 130};
}

void ReferencePlot::paintContent(QPainter& painter, const QRectF& area, const PlotRanges& ranges) {
    Plotter::paintContent(painter, area, ranges);
    if (!marks_)
        return;
    painter.save();
    const QRectF axes = geometryIn(area, ranges).axes;
    const double width = axes.width() / LetterCode::nrOfTasks;
    painter.setFont(scoreFont(font(), width));
    const double height = 3.0 * painter.fontMetrics().lineSpacing();
    QRectF place(axes.left(), axes.center().y() - height / 2, width, height);
    QColor veil = plotColors::background;
    veil.setAlpha(190); // the numbers stay readable over the curve
    painter.fillRect(QRectF(axes.left() + 1, place.top(), axes.width() - 2, height), veil);
    for (const TaskMark& mark : *marks_) {
        paintMark(painter, place, mark);
        place.translate(width, 0);
    }
    painter.restore();
}
