// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/ui/timing_strip_content.h"

#include "display/plots/plot_colors.h"
#include "display/plots/plot_ranges.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double microseconds = 1000.0; // in a millisecond
const QColor limitColor(0xff, 0xb3, 0x47);

/// Stages that the operator sees as one.
struct Layer {
    const char* name;
    QColor color;
    std::vector<VolumeStage> stages;
};

// Together they have all stages that are work.
const std::vector<Layer>& layers() {
    using enum VolumeStage;
    static const std::vector<Layer> all = {
        {"Reading", {0x5c, 0xa8, 0xff}, {Reading}},
        {"Motion", {0xff, 0x6b, 0x5e}, {Motion}},
        {"Smoothing", {0xf2, 0xe0, 0x6a}, {Smoothing}},
        {"Model", {0x6f, 0xd6, 0x6f}, {Model, Maps}},
        {"Regions", {0xb4, 0x8c, 0xff}, {Regions}},
        {"Plug-in", {0xff, 0x8a, 0xd8}, {PlugIn}},
        {"Feedback", plotColors::accent, {Classification, Feedback, Decoder}},
        {"Drawing", plotColors::quietText, {Plots, Drawing, Window}},
        {"Files", {0xd0, 0x8c, 0x4a}, {Journal, Logs}},
        {"Protocol", plotColors::text, {Protocol}}};
    return all;
}

PlotCurve curveOf(const Layer& layer, std::span<const VolumeTimes> volumes) {
    PlotCurve curve;
    curve.legend = layer.name;
    curve.color = layer.color;
    curve.values.reserve(volumes.size());
    for (const VolumeTimes& volume : volumes) {
        qint64 time = 0;
        for (const VolumeStage stage : layer.stages)
            time += volume.of(stage);
        curve.values.push_back(float(double(time) / microseconds));
    }
    return curve;
}

PlotRange timeRange(const VolumeLedger& ledger) {
    constexpr double room = 1.25; // the line of the TR and its text stand free
    constexpr double most = 3.0;
    const double TR = double(ledger.TR()) / microseconds;
    double longest = 0.0;
    for (const VolumeTimes& volume : ledger.volumes())
        longest = std::max(longest, double(volume.needed()) / microseconds);
    const double end = TR > 0.0 ? std::clamp(longest, room * TR, most * TR) : longest;
    return roundedOut({0.0, std::max(end, 1.0)});
}

PlotLine lineAt(double milliseconds, const QColor& color, const QString& text) {
    PlotLine line;
    line.at = milliseconds;
    line.orientation = Qt::Horizontal;
    line.color = color;
    line.text = text;
    return line;
}

} // namespace

PlotContent timingStripContent(const VolumeLedger& ledger, int planned) {
    PlotContent content;
    content.title = "Time that each volume needs";
    content.xLabel = "Volume";
    content.yLabel = "ms";
    content.xStart = 1.0;
    content.stacked = true;
    if (ledger.volumes().empty()) {
        content.note = "Times are those of a run that is measured now";
        return content;
    }
    for (const Layer& layer : layers())
        content.curves.push_back(curveOf(layer, ledger.volumes()));
    content.xRange = PlotRange{0.5, std::max(planned, int(ledger.volumes().size())) + 0.5};
    content.yRange = timeRange(ledger);
    if (ledger.TR() > 0) {
        const double TR = double(ledger.TR()) / microseconds;
        content.lines = {lineAt(0.75 * TR, plotColors::frame, {}),
                         lineAt(TR, limitColor, QStringLiteral("TR %1 ms").arg(TR))};
    }
    return content;
}

QString timingReadOut(const VolumeLedger& ledger) {
    const std::span<const VolumeTimes> volumes = ledger.volumes();
    if (volumes.empty())
        return {};
    const VolumeTimes& last = volumes.back();
    const auto number = [](qint64 time, int width) {
        return QString::number(double(time) / microseconds, 'f', 0).rightJustified(width);
    };
    const auto slow = std::count_if(volumes.begin(), volumes.end(), [&](const VolumeTimes& volume) {
        return ledger.isSlow(volume);
    });
    const QString end = last.late() > 0 ? "late by" + number(last.late(), 6)
                                        : "in time by" + number(-last.late(), 6);
    return QStringLiteral("Needed%1 ms, %2 ms of it for %3; %4 ms\nVolumes above 3/4 of the TR:%5")
        .arg(number(last.needed(), 6), number(last.of(last.longest()), 0),
             QLatin1String(nameOf(last.longest())), end)
        .arg(slow, 5);
}
