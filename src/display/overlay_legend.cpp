// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/overlay_legend.h"

#include "dialogs/number_fields.h"
#include "display/overlay_coloring.h"

#include <QFontMetrics>
#include <QPainter>

namespace {

const QColor textColor(214, 218, 224);
const QColor quietTextColor(150, 156, 166);
const QColor frameColor(70, 76, 86);

constexpr int nrOfSteps = nrOfOverlayColors / 2;
constexpr int numberWidth = 6; ///< characters of a threshold
constexpr QChar atLeast(0x2265);
constexpr int mostLinesOfName = 3;

QColor colorOf(const RgbColor& color) {
    const auto channel = [](int value) { return std::clamp(value, 0, 255); };
    return {channel(color.red), channel(color.green), channel(color.blue)};
}

/// Both thresholds have the decimals that the lower one needs.
QString thresholdNumber(const OverlayLegend& legend, float value) {
    return QString::number(double(value), 'f', decimalsFor(double(legend.threshold)))
        .rightJustified(numberWidth);
}

/// Colours of the single maps and, for two, of their overlap; overlaps of more maps are evident
/// mixtures.
void addEntries(OverlayLegend& legend, const ShownMaps& maps) {
    for (int map = 0; map < maps.count(); ++map) {
        const size_t index = size_t(multiMapColorIndex(1u << map, maps.count()));
        legend.entries.push_back({maps.names[map], legend.scale[index]});
    }
    if (maps.count() == 2)
        legend.entries.push_back({"Both", legend.scale[size_t(multiMapColorIndex(0b11, 2))]});
}

/// Ten blocks from `first` at the top, in steps of `step`, with the values at both ends.
void paintBar(QPainter& painter, const QRect& bar, const OverlayLegend& legend, int first, int step,
              float top, float bottom) {
    for (int i = 0; i < nrOfSteps; ++i) {
        const int from = bar.top() + bar.height() * i / nrOfSteps;
        const int to = bar.top() + bar.height() * (i + 1) / nrOfSteps;
        painter.fillRect(bar.left(), from, bar.width(), to - from,
                         legend.scale[size_t(first + i * step)]);
    }
    painter.setPen(frameColor);
    painter.drawRect(bar.adjusted(-1, -1, 0, 0));
    painter.setPen(textColor);
    const int line = painter.fontMetrics().height();
    const int left = bar.right() + line / 4;
    const QRect upper(left, bar.top() - line / 4, line * 10, line);
    const QRect lower(left, bar.bottom() + 1 + line / 4 - line, line * 10, line);
    painter.drawText(upper, Qt::AlignLeft | Qt::AlignVCenter, thresholdNumber(legend, top));
    painter.drawText(lower, Qt::AlignLeft | Qt::AlignVCenter, thresholdNumber(legend, bottom));
}

void paintScale(QPainter& painter, const QRect& area, const OverlayLegend& legend) {
    const int line = painter.fontMetrics().height();
    const int gap = line;
    const int height = std::clamp((area.height() - gap) / 2, 2 * line, 10 * line);
    QRect bar(area.left() + 1, area.top() + line / 4, line, height);
    if (legend.positive) {
        paintBar(painter, bar, legend, nrOfSteps - 1, -1, legend.colorMaxThreshold,
                 legend.threshold);
        bar.translate(0, height + gap);
    }
    if (legend.negative)
        paintBar(painter, bar, legend, nrOfSteps, 1, -legend.threshold, -legend.colorMaxThreshold);
}

/// A square of the colour and the name beside it, wrapped to a few lines.
void paintEntries(QPainter& painter, QRect area, const OverlayLegend& legend) {
    const int line = painter.fontMetrics().height();
    const int swatch = line * 3 / 4;
    for (const OverlayLegend::Entry& entry : legend.entries) {
        const QRect square(area.left(), area.top() + (line - swatch) / 2, swatch, swatch);
        painter.fillRect(square, entry.color);
        painter.setPen(frameColor);
        painter.drawRect(square.adjusted(0, 0, -1, -1));

        QRect room = area.adjusted(swatch + line / 3, 0, 0, 0);
        room.setHeight(std::min(area.height(), mostLinesOfName * line));
        constexpr int flags = Qt::AlignLeft | Qt::AlignTop | Qt::TextWrapAnywhere;
        constexpr int wordFlags = Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap;
        QRect used = painter.boundingRect(room, wordFlags, entry.name);
        const bool wordsFit = used.width() <= room.width() && used.height() <= room.height();
        if (!wordsFit)
            used = painter.boundingRect(room, flags, entry.name).intersected(room);
        painter.setPen(textColor);
        painter.setClipRect(room);
        painter.drawText(room, wordsFit ? wordFlags : flags, entry.name);
        painter.setClipping(false);
        area.setTop(area.top() + std::max(used.height(), line) + line / 2);
        if (area.height() < line)
            return;
    }
}

} // namespace

OverlayLegend makeOverlayLegend(const ShownMaps& maps, const OverlayThresholds& thresholds) {
    OverlayLegend legend;
    legend.overlayShown = !maps.empty();
    if (!legend.overlayShown)
        return legend;
    legend.significanceColorCoding = maps.significanceColorCoding;
    legend.statistic = maps.statistic;
    legend.threshold = thresholds.Threshold;
    legend.colorMaxThreshold = thresholds.ColorMaxThreshold;
    for (const int state : maps.states) {
        legend.positive |= state != ContrastNegative;
        legend.negative |= (state & ContrastNegative) != 0;
    }
    std::transform(maps.colors.begin(), maps.colors.end(), legend.scale.begin(), colorOf);
    if (!maps.significanceColorCoding)
        addEntries(legend, maps);
    return legend;
}

QString legendText(const OverlayLegend& legend) {
    if (!legend.overlayShown)
        return "No statistical map is shown.";
    QStringList lines{QString("%1 from %2, strongest colour at %3")
                          .arg(legend.statistic,
                               thresholdNumber(legend, legend.threshold).trimmed(),
                               thresholdNumber(legend, legend.colorMaxThreshold).trimmed())};
    if (!legend.significanceColorCoding)
        lines[0] = QString("%1 from %2")
                       .arg(legend.statistic, thresholdNumber(legend, legend.threshold).trimmed());
    for (const OverlayLegend::Entry& entry : legend.entries)
        lines << entry.name;
    return lines.join('\n');
}

int legendWidth(const QFont& font) {
    const QFontMetrics numbers(numberFont(font));
    const QFontMetrics texts(font);
    return std::max(numbers.horizontalAdvance(QString(numberWidth, '0')) + 2 * numbers.height(),
                    texts.averageCharWidth() * 16 + texts.height());
}

void paintOverlayLegend(QPainter& painter, const QRect& area, const OverlayLegend& legend,
                        const QFont& font) {
    if (!legend.overlayShown)
        return;
    painter.save();
    QFont bold = font;
    bold.setBold(true);
    painter.setFont(bold);
    const int line = painter.fontMetrics().height();
    QRect rest = area.adjusted(0, line * 2, 0, 0);
    const QRect head(area.left(), area.top(), area.width(), line);
    painter.setPen(textColor);
    painter.drawText(head, Qt::AlignLeft | Qt::AlignVCenter, legend.statistic);
    if (legend.significanceColorCoding) {
        painter.setFont(numberFont(font));
        paintScale(painter, rest, legend);
    } else {
        const int offset = painter.fontMetrics().horizontalAdvance(legend.statistic + " ");
        painter.setFont(numberFont(font));
        painter.setPen(quietTextColor);
        painter.drawText(head.adjusted(offset, 0, 0, 0), Qt::AlignLeft | Qt::AlignVCenter,
                         atLeast + thresholdNumber(legend, legend.threshold).trimmed());
        painter.setFont(font);
        paintEntries(painter, rest, legend);
    }
    painter.restore();
}
