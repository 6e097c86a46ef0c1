// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/plots/plot_read_out.h"

#include "display/plots/plot_drawing.h"
#include "display/plots/plot_ranges.h"
#include "display/plots/stack_painting.h"

#include <QStringList>
#include <cmath>

namespace {

constexpr QChar plusMinus(0xb1);
constexpr QChar dash(0x2013);

QString named(const QString& name, const QString& value) {
    return QStringLiteral("%1: %2").arg(name, value);
}

QString withError(float value, float error) {
    if (!std::isfinite(value))
        return dash;
    const QString text = readOutNumber(double(value));
    return std::isfinite(error) && error != 0.0f
               ? QStringLiteral("%1 %2 %3").arg(text, plusMinus, readOutNumber(double(error)))
               : text;
}

QString nameOf(const PlotContent& content, size_t curve) {
    if (!content.curves[curve].legend.isEmpty())
        return content.curves[curve].legend;
    if (content.curves.size() > 1)
        return QStringLiteral("Curve %1").arg(curve + 1);
    return content.yLabel.isEmpty() ? QStringLiteral("y") : content.yLabel;
}

/// "Curve 1: Data 12.5" where the plot numbers its curves, else "Data: 12.5".
QString curveLine(const PlotContent& content, size_t curve, const QString& value) {
    const QString name = nameOf(content, curve);
    if (content.curveLabel.isEmpty())
        return named(name, value);
    return QString(content.curveLabel).replace("%i", QString::number(curve + 1)) + name + ' ' +
           value;
}

QString valueOf(const PlotCurve& curve, double index) {
    if (!(index >= 0.0 && index < double(curve.values.size())))
        return dash;
    const auto point = size_t(index);
    const bool withErrors = curve.errors.size() == curve.values.size();
    return withError(curve.values[point], withErrors ? curve.errors[point] : 0.0f);
}

QStringList bandsAt(const PlotContent& content, double x) {
    QStringList names;
    for (const PlotBand& band : content.bands)
        if (x >= band.from && x <= band.to && !names.contains(band.name))
            names << band.name;
    names.removeAll(QString());
    return names;
}

} // namespace

QString readOutNumber(double value) {
    return QString::number(value, 'g', 6);
}

QString readOut(const PlotContent& content, double x) {
    if (!content.bars.empty()) {
        const double bar = std::round(x);
        if (!(bar >= 0.0 && bar < double(content.bars.size())))
            return {};
        const PlotBar& shown = content.bars[size_t(bar)];
        return named(shown.name, withError(shown.value, shown.error));
    }
    const double index = pointNearX(content, x);
    const double place = hasData(content) ? xOfPoint(content, int(index)) : x;
    QStringList lines{named(content.xLabel.isEmpty() ? QStringLiteral("x") : content.xLabel,
                            readOutNumber(place))};
    lines << bandsAt(content, x);
    for (size_t curve = 0; curve < content.curves.size(); ++curve)
        lines << curveLine(content, curve, valueOf(content.curves[curve], index));
    if (content.stacked && index >= 0.0 && index < double(stackedPoints(content)))
        lines << named(QStringLiteral("Sum"), readOutNumber(stackHeight(content, size_t(index))));
    for (const PlotMarks& marks : content.marks)
        for (const QPointF& point : marks.points)
            if (isPlace(point) && pointNearX(content, point.x()) == index)
                lines << named(marks.legend.isEmpty() ? content.yLabel : marks.legend,
                               readOutNumber(point.y()));
    return lines.join('\n');
}
