// Curves of regions from the saved runs of a project.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/loop/multi_run.h"

/// One run of an analysed project, as the plots of regions show it.
struct PlottedRun {
    RunOfStudy study;    ///< without conditions where its protocol could not be read
    DesignMatrix design; ///< of the run alone: the conditions of all runs, then a constant
};

/// Header, protocol and design of a listed run; `names` is the common design of the document.
/// Without a protocol, which is told, the run has a curve but no betas. False, after a message,
/// when the run can't be found or read.
[[nodiscard]] bool loadPlottedRun(PlottedRun& plotted, const MultiRunProject& project, int index,
                                  const std::vector<StudyCondition>& conditions,
                                  const DesignMatrix& names);

/// Leaves the region without curve and betas.
void forgetCurve(RegionOfInterest& region);

/// The region's curve over the whole run, read from its data file, and the betas of the run's own
/// model. False, after a message, when the data can't be read or the run is not of `size`; the
/// region then has no curve.
[[nodiscard]] bool loadCurve(RegionOfInterest& region, const PlottedRun& plotted,
                             const VolumeSize& size, bool bestVoxelSelection);
