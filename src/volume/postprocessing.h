// Post-processing of a measured run: slice times, smoothing, slow drifts.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/progress.h"
#include "volume/postprocessing_options.h"
#include "volume/volume_backup.h"

enum class PostprocessingResult {
    Done,
    NothingToDo, ///< no volume, or no step chosen
    Cancelled,   ///< the samples are restored
    Failed,      ///< after a message
};

/// Runs the checked steps on the first volumes of the run, as many as were measured: slice scan
/// times, spatial smoothing, high-pass or else linear trend, temporal Gaussian. Impossible choices
/// are found before any sample is changed. When memory runs out midway, samples already written
/// stay. `backup` receives the original samples, since the work can be cancelled, even while its
/// result is written. Must not be called while a run is being measured.
[[nodiscard]] PostprocessingResult postprocessRun(FMRProject& project, int nrOfMeasuredVolumes,
                                                  const PostprocessingOptions& options,
                                                  VolumeBackup& backup, ProgressReporter& progress);

/// Writes the data (.stc) and the header (.fmr) of the run into its target folder under the names
/// that record the options; the project keeps its own names. False after a message, also when the
/// options leave the names unchanged, since the run's own files would be replaced; false without
/// message or files when cancelled before the data are written.
[[nodiscard]] bool writePostprocessedRun(FMRProject& project, int nrOfMeasuredVolumes,
                                         const PostprocessingOptions& options,
                                         ProgressReporter* progress = nullptr);
