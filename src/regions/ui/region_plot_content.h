// What the plots of regions show, from the parts of a document.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "display/plots/plot_content.h"
#include "regions/event_related_average.h"
#include "regions/region_of_interest.h"
#include "stats/design_matrix.h"

/// A region with what the plots need beside it.
struct PlottedRegion {
    const RegionOfInterest& region;
    int number;      ///< from 0
    QColor color;    ///< as on the slices, or lighter
    int lastVolume;  ///< index of the last valid volume; -1 for none
    int voxelsInUse; ///< of the region's voxels, where only the best are used
};

/// How a time course is shown.
struct TimeCourseDisplay {
    bool percent = false; ///< change from the mean of the curve, else the units of the data
    bool detrended = false;
    bool protocol = true;
    bool grid = true;
    bool legend = true;
};

/// "ROI 1".
[[nodiscard]] QString regionName(int number);
/// "ROI 1 · 57 voxels · slice 9 · tSNR 83.2". The ratio is that of the signal as it was measured,
/// and is left out where there is none.
[[nodiscard]] QString regionHeading(const PlottedRegion& plotted);

/// The signal up to the last valid volume, as it was measured.
[[nodiscard]] std::span<const float> measuredCurve(const PlottedRegion& plotted);
/// The same in percent and without its trend, as wanted.
[[nodiscard]] std::vector<float> shownCurve(const PlottedRegion& plotted,
                                            const TimeCourseDisplay& display);
/// The time course over the volumes of the run, from 1. The range of the values is that of the
/// data, or the one given.
[[nodiscard]] PlotContent timeCourseContent(const PlottedRegion& plotted,
                                            const StimulationProtocol& protocol, float TR,
                                            const TimeCourseDisplay& display,
                                            const std::optional<PlotRange>& range);

/// A bar for each condition predictor, in percent where the betas are. Error bars are standard
/// errors.
[[nodiscard]] PlotContent betaContent(const PlottedRegion& plotted, const DesignMatrix& design,
                                      const std::optional<PlotRange>& range);

/// The range of all finite values, widened to round numbers; nothing without values.
[[nodiscard]] std::optional<PlotRange> roundedRange(const std::vector<std::vector<float>>& curves);

/// The unit of the time axis of an average.
enum class AveragingTimeAxis { Scans, Seconds, UnitsOfTR };

/// As a number: one of these, or the milliseconds of the unit, which are at least 3.
inline constexpr int averagingInScans = -1;
inline constexpr int averagingInSeconds = -2;
/// `TR` in milliseconds; without one the axis is in scans.
[[nodiscard]] int averagingInterval(AveragingTimeAxis axis, float TR);

[[nodiscard]] QString averagingTimeLabel(int interval);
[[nodiscard]] QString averagingValueLabel(bool percent);

/// The averages of one region, as they are added to a plot.
struct PlottedAverages {
    int regionNumber;
    std::vector<ConditionAverage> averages;
};

/// The averages with their standard errors. `TR` in milliseconds. With several regions their curves
/// differ by brightness.
[[nodiscard]] PlotContent averagingContent(const std::vector<PlottedAverages>& regions,
                                           const AveragingWindow& window, int interval, float TR);
