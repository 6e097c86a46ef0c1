// What the operator chose for the plots of all regions.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "regions/ui/region_plot_content.h"

enum class ShownPlots { TimeCourses, Betas, Both };

/// Owned by the container; the plots look at it when they are refreshed.
struct RegionPlotSettings {
    ShownPlots shown = ShownPlots::Both;
    bool detrended = false;
    bool commonTimeCourseScale = false; ///< the range of all plots that are shown
    bool commonBetaScale = false;
    PlotRange betaRange{-1.0, 3.0}; ///< of all beta plots with the common scale
    AveragingWindow averaging;
    AveragingTimeAxis timeAxis = AveragingTimeAxis::Scans;
};
