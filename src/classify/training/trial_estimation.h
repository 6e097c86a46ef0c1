// Estimating the trials of finished runs.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/progress.h"
#include "classify/trial_intervals.h"
#include "classify/trial_maps.h"
#include "regions/region_of_interest.h"
#include "run/document/qt_cortivo_doc.h"

#include <functional>
#include <memory>

/// How an estimation has ended.
enum class EstimationEnd {
    Done,
    Stopped,          ///< by the operator
    MessageShown,     ///< by whoever read or wrote a file
    NoTrials,         ///< the selected conditions have none
    WindowTooLong,    ///< a window has as many points as the run has volumes, or more
    ImpossibleTrial,  ///< it ends before it begins, or lies outside of what a run can have
    FlatResponse,     ///< the mean response doesn't change, so that it can't be a predictor
    OutOfMemory,      ///< for designs
    OutOfMemoryOfMaps ///< for the maps, of which there is one for each trial
};

/// Estimates the trials of a loaded run, whose volumes are in memory: a map for each trial, in
/// their order, with 0 where voxels are left out. `responsePlaces` are the voxels of
/// measuredResponse(); empty: all at or above the intensity limit. Trials of equal duration share
/// one design. Lines for the operator go to `log`. Slices go to all cores, with the same result as
/// on one. Unless Done, `maps` is undefined.
[[nodiscard]] EstimationEnd estimateRun(const FMRProject& project, const std::vector<Trial>& trials,
                                        const TrialOptions& options,
                                        const std::vector<size_t>& responsePlaces, TrialMaps& maps,
                                        QStringList& log, ProgressReporter& progress);

/// What an estimation of several runs works on; copies, so that nothing changes meanwhile.
struct EstimationPlan {
    QStringList runs;                           ///< project files
    std::vector<StimulationProtocol> protocols; ///< theirs
    QStringList conditions;
    TrialOptions options;
    VoxelList region; ///< for the mean response, in runs of `regionSize`; may be empty
    VolumeSize regionSize;
};
/// What it has given.
struct EstimationOutcome {
    EstimationEnd end = EstimationEnd::Done;
    QString run;            ///< the last one that was begun
    QStringList trialFiles; ///< of the runs that are done
    /// The last one of these, with its slices and protocol, without volumes; null when none is.
    std::unique_ptr<QtCortivoDoc> document;
};
/// Loads and estimates the runs one after the other. A run's maps and settings file are written
/// when its last trial is done, so that runs that were done before a stop keep theirs.
[[nodiscard]] EstimationOutcome estimateRuns(const EstimationPlan& plan,
                                             const std::function<void(const QString&)>& log,
                                             ProgressReporter& progress);

/// The message about how an estimation has ended; empty for Done, Stopped and MessageShown.
[[nodiscard]] QString estimationFault(const EstimationOutcome& outcome);
