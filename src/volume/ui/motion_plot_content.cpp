// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/ui/motion_plot_content.h"

#include "display/plots/plot_colors.h"
#include "display/plots/plot_ranges.h"
#include "volume/motion_quality.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr const char* axisNames[] = {"X", "Y", "Z"};
constexpr size_t nrOfAxes = 3;
const QColor axisColors[] = {{0xff, 0x6b, 0x5e}, {0x6f, 0xd6, 0x6f}, {0x5c, 0xa8, 0xff}};
const QColor limitColor(0xff, 0xb3, 0x47);

PlotLine lineAt(int volume, const QColor& color) {
    PlotLine line;
    line.at = volume;
    line.color = color;
    return line;
}

/// Axes, protocol and marks of volumes, as all four plots have them.
PlotContent emptyContent(const PlottedMotion& plotted, const QString& title, const QString& unit) {
    PlotContent content;
    content.title = title;
    content.yLabel = unit;
    content.xStart = 1.0;
    if (plotted.nrOfVolumes > 0)
        content.xRange = PlotRange{0.5, plotted.nrOfVolumes + 0.5};
    content.bands = plotted.bands;
    for (PlotBand& band : content.bands)
        band.name.clear();
    content.note = plotted.note;
    for (const int volume : plotted.motion.volumesNotFound)
        if (volume < plotted.measured)
            content.lines.push_back(lineAt(volume + 1, limitColor));
    if (plotted.measured > 0)
        content.lines.push_back(lineAt(plotted.measured, plotColors::quietText));
    return content;
}

/// The first values, as many as volumes are valid.
std::vector<float> measuredPart(std::span<const float> values, const PlottedMotion& plotted) {
    const size_t count = std::min(values.size(), size_t(std::max(plotted.measured, 0)));
    return {values.begin(), values.begin() + std::ptrdiff_t(count)};
}

/// Three of the six parameters.
PlotContent parameterContent(const PlottedMotion& plotted, size_t first, const QString& title,
                             const QString& unit) {
    PlotContent content = emptyContent(plotted, title, unit);
    for (size_t i = 0; i < nrOfAxes; ++i) {
        PlotCurve curve;
        curve.legend = axisNames[i];
        curve.color = axisColors[i];
        curve.values = measuredPart(plotted.motion.motionParameters[first + i].span(), plotted);
        content.curves.push_back(std::move(curve));
    }
    return content;
}

PlotContent courseContent(const PlottedMotion& plotted, std::span<const float> values,
                          const QString& title, const QString& unit) {
    PlotContent content = emptyContent(plotted, title, unit);
    PlotCurve curve;
    curve.color = plotColors::accent;
    content.xLabel = "Volume"; // below the upper ones there are others
    curve.values = measuredPart(values, plotted);
    content.curves.push_back(std::move(curve));
    return content;
}

/// From 0, since a displacement is never below it, and up to the limit at least.
PlotRange displacementRange(std::span<const float> values) {
    constexpr double margin = 1.04;
    double largest = framewiseDisplacementLimit;
    for (const float value : values)
        if (std::isfinite(value))
            largest = std::max(largest, double(value));
    return roundedOut({0.0, largest * margin});
}

/// Right-aligned, a dash where there is none.
QString number(std::span<const float> values, int volume, int decimals) {
    constexpr int width = 6;
    const bool exists = volume >= 0 && size_t(volume) < values.size();
    const float value = exists ? values[size_t(volume)] : std::numeric_limits<float>::quiet_NaN();
    const QString text =
        std::isfinite(value) ? QString::number(double(value), 'f', decimals) : QString("-");
    return text.rightJustified(width);
}

} // namespace

PlotContent translationContent(const PlottedMotion& plotted) {
    PlotContent content = parameterContent(plotted, 0, "Translation", "mm");
    content.bands = plotted.bands; // with their names, once for all four
    return content;
}

PlotContent rotationContent(const PlottedMotion& plotted) {
    return parameterContent(plotted, nrOfAxes, "Rotation", "degrees");
}

PlotContent displacementContent(const PlottedMotion& plotted) {
    PlotContent content =
        courseContent(plotted, plotted.displacement, "Framewise displacement", "mm");
    PlotLine limit;
    limit.at = framewiseDisplacementLimit;
    limit.orientation = Qt::Horizontal;
    limit.color = limitColor;
    limit.text = QString("%1 mm").arg(framewiseDisplacementLimit);
    content.lines.push_back(limit);
    if (plotted.nrOfVolumes > 0)
        content.yRange = displacementRange(plotted.displacement);
    return content;
}

PlotContent dvarsContent(const PlottedMotion& plotted) {
    PlotContent content = courseContent(plotted, plotted.dvars, "DVARS", "%");
    content.note = plotted.nrOfVolumes > 0 ? "From the second volume on" : plotted.note;
    return content;
}

QString motionReadOut(const PlottedMotion& plotted) {
    constexpr int widthOfCount = 5;
    const int last = plotted.measured - 1;
    const auto parameters = [&](size_t first) {
        QString text;
        for (size_t i = first; i < first + nrOfAxes; ++i)
            text += QString("  %1%2").arg(
                axisNames[i - first], number(plotted.motion.motionParameters[i].span(), last, 2));
        return text;
    };
    const auto above =
        std::count_if(plotted.displacement.begin(), plotted.displacement.end(),
                      [](float value) { return double(value) > framewiseDisplacementLimit; });
    return QString("Volume %1   Translation%2 mm\nRotation%3 deg   DVARS%4 %\n"
                   "Framewise displacement%5 mm   Volumes above %6 mm: %7")
        .arg(std::max(plotted.measured, 0), widthOfCount)
        .arg(parameters(0), parameters(nrOfAxes), number(plotted.dvars, last, 2),
             number(plotted.displacement, last, 2))
        .arg(framewiseDisplacementLimit)
        .arg(above, widthOfCount);
}
