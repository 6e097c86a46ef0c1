// SPDX-License-Identifier: GPL-3.0-or-later
#include "regions/ui/region_plot_content.h"

#include "dialogs/appearance.h"
#include "display/plots/plot_colors.h"
#include "display/plots/plot_drawing.h"
#include "regions/time_course_statistics.h"
#include "run/protocol/ui/protocol_plot_content.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

const QColor& markColor = plotColors::quietText; // of lines that mark a place
constexpr int smallestUnit = 3;                  // milliseconds, of a time axis

QString voxelText(const PlottedRegion& plotted) {
    const int all = plotted.region.NrOfVoxels();
    if (plotted.voxelsInUse != all)
        return QString("%1 of %2 voxels").arg(plotted.voxelsInUse).arg(all);
    return all == 1 ? QString("1 voxel") : QString("%1 voxels").arg(all);
}

QString sliceText(const std::vector<int>& slices) {
    if (slices.empty())
        return {};
    const auto [first, last] = std::minmax_element(slices.begin(), slices.end());
    if (*first == *last)
        return QString(" · slice %1").arg(*first + 1);
    return QString(" · slices %1-%2").arg(*first + 1).arg(*last + 1);
}

/// What turns a beta of the fit into the units of ROIBetas.
double percentFactor(const RegionOfInterest& region, const DesignMatrix& design) {
    constexpr float leastConstant = 0.01f;
    const auto constant = size_t(design.NrOfConditionPredictors);
    if (constant >= region.ROIBetas.size())
        return 1.0;
    const float magnitude = std::abs(region.ROIBetas[constant]);
    return magnitude > leastConstant ? 100.0 / double(magnitude) : 1.0;
}

double standardError(const RegionOfInterest& region, size_t predictor) {
    const size_t columns = region.ROIBetas.size();
    if (region.BetaCovariance.size() != columns * columns)
        return 0.0;
    const double variance = region.BetaCovariance[predictor * columns + predictor];
    return std::sqrt(std::max(variance * double(region.residualVariance), 0.0));
}

/// Curves of several regions in the colour of one condition.
QColor shade(const QColor& color, size_t region) {
    constexpr int factors[] = {100, 60, 130, 80, 115, 45};
    return color.lighter(factors[region % std::size(factors)]);
}

/// Gaps where no trial counts.
std::vector<float> shownAverage(const ConditionAverage& average) {
    std::vector<float> values = average.mean;
    for (size_t i = 0; i < std::min(values.size(), average.trials.size()); ++i)
        if (average.trials[i] == 0)
            values[i] = std::numeric_limits<float>::quiet_NaN();
    return values;
}

/// Units of the time axis from one volume to the next.
double averagingStep(int interval, float TR) {
    constexpr double millisecondsPerSecond = 1000.0;
    if (interval == averagingInSeconds)
        return double(TR) / millisecondsPerSecond;
    return interval < smallestUnit ? 1.0 : double(TR) / interval;
}

} // namespace

QString regionName(int number) {
    return QString("ROI %1").arg(number + 1);
}

QString regionHeading(const PlottedRegion& plotted) {
    QString text = regionName(plotted.number) + " · " + voxelText(plotted) +
                   sliceText(plotted.region.voxels.z);
    const double ratio = temporalSignalToNoise(measuredCurve(plotted));
    if (ratio > 0)
        text += " · tSNR " + QString::number(ratio, 'f', 1);
    return text;
}

std::span<const float> measuredCurve(const PlottedRegion& plotted) {
    const int count = std::clamp(plotted.lastVolume + 1, 0, plotted.region.NrOfValues());
    return std::span(plotted.region.TimeCourseValues).first(size_t(count));
}

std::vector<float> shownCurve(const PlottedRegion& plotted, const TimeCourseDisplay& display) {
    const std::span<const float> values = measuredCurve(plotted);
    std::vector<float> curve =
        display.detrended ? detrended(values) : std::vector<float>(values.begin(), values.end());
    return display.percent ? percentOfMean(curve) : curve;
}

PlotContent timeCourseContent(const PlottedRegion& plotted, const StimulationProtocol& protocol,
                              float TR, const TimeCourseDisplay& display,
                              const std::optional<PlotRange>& range) {
    PlotContent content;
    content.xLabel = "Volume";
    content.yLabel = display.percent ? "% signal change" : "Signal";
    if (display.detrended)
        content.yLabel += ", detrended";
    content.xStart = 1.0;
    content.xRange = PlotRange{0.5, std::max(plotted.region.NrOfValues(), 1) + 0.5};
    content.yRange = range;
    content.gridShown = display.grid;
    content.legendShown = display.legend;
    if (display.protocol)
        content.bands = protocolBands(protocol, TR);
    PlotCurve curve;
    curve.legend = regionName(plotted.number);
    curve.color = plotted.color;
    curve.values = shownCurve(plotted, display);
    if (curve.values.empty()) {
        content.note = "Waiting for the first volume";
        return content;
    }
    PlotLine current;
    current.at = double(curve.values.size());
    current.color = markColor;
    current.text = QString::number(double(curve.values.back()), 'f', display.percent ? 2 : 1);
    content.lines.push_back(current);
    content.curves.push_back(std::move(curve));
    return content;
}

PlotContent betaContent(const PlottedRegion& plotted, const DesignMatrix& design,
                        const std::optional<PlotRange>& range) {
    const RegionOfInterest& region = plotted.region;
    PlotContent content;
    content.title = regionName(plotted.number);
    if (region.predictorsInFit == 0 || region.ROIBetas.empty()) {
        content.note = "No model yet";
        return content;
    }
    content.yRange = range;
    const double factor = percentFactor(region, design);
    content.yLabel = factor == 1.0 ? "Beta" : "Beta (%)";
    const size_t conditions =
        std::min({size_t(std::max(design.NrOfConditionPredictors, 0)), region.ROIBetas.size(),
                  design.PredictorColors.size(), size_t(design.PredictorNames.size())});
    for (size_t i = 0; i < conditions; ++i)
        content.bars.push_back({design.PredictorNames[qsizetype(i)],
                                toQColor(design.PredictorColors[i]), region.ROIBetas[i],
                                float(standardError(region, i) * factor)});
    if (content.bars.empty())
        content.note = "The model has no condition";
    return content;
}

std::optional<PlotRange> roundedRange(const std::vector<std::vector<float>>& curves) {
    std::optional<PlotRange> range;
    for (const std::vector<float>& curve : curves)
        for (const float value : curve) {
            if (!std::isfinite(value))
                continue;
            if (!range)
                range = PlotRange{double(value), double(value)};
            range->from = std::min(range->from, double(value));
            range->to = std::max(range->to, double(value));
        }
    constexpr int steps = 8;
    const std::vector<double> ticks =
        range && range->from < range->to ? roundTicks(*range, steps) : std::vector<double>();
    if (ticks.size() < 2)
        return range;
    const double step = ticks[1] - ticks[0];
    return PlotRange{std::floor(range->from / step) * step, std::ceil(range->to / step) * step};
}

int averagingInterval(AveragingTimeAxis axis, float TR) {
    if (axis == AveragingTimeAxis::Scans || !(TR >= float(smallestUnit)))
        return averagingInScans;
    return axis == AveragingTimeAxis::Seconds ? averagingInSeconds : int(std::lround(TR));
}

QString averagingTimeLabel(int interval) {
    if (interval == averagingInSeconds)
        return "Time (sec)";
    return interval < smallestUnit ? QString("Time (scans)")
                                   : QString("Time (%1 msec)").arg(interval);
}

QString averagingValueLabel(bool percent) {
    return percent ? "fMRI response (% BOLD signal)" : "fMRI response (arbitrary units)";
}

PlotContent averagingContent(const std::vector<PlottedAverages>& regions,
                             const AveragingWindow& window, int interval, float TR) {
    PlotContent content;
    content.xLabel = averagingTimeLabel(interval);
    content.yLabel = averagingValueLabel(window.percent);
    content.xStep = averagingStep(interval, TR);
    content.xStart = -window.before * content.xStep;
    for (size_t i = 0; i < regions.size(); ++i)
        for (const ConditionAverage& average : regions[i].averages) {
            PlotCurve curve;
            curve.legend = regions.size() == 1
                               ? average.name
                               : regionName(regions[i].regionNumber) + ' ' + average.name;
            curve.color = shade(toQColor(average.color), i);
            curve.values = shownAverage(average);
            curve.errors = average.standardError;
            content.curves.push_back(std::move(curve));
        }
    if (content.curves.empty()) {
        content.note = "No trial yet";
        return content;
    }
    PlotLine onset;
    onset.at = 0.0;
    onset.color = markColor;
    onset.text = "Onset";
    content.lines.push_back(onset);
    return content;
}
