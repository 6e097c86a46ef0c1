// Post-processing of a measured run: slice times, smoothing, slow drifts.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/progress.h"
#include "volume/postprocessing_options.h"
#include "volume/volume_backup.h"

enum class PostprocessingResult {
    Done,
    NothingToDo, ///< no volume, or no step chosen
    Cancelled,   ///< the samples are as they were
    Failed,      ///< after a message
};

/// Runs the checked steps on the first volumes of the run, as many as were measured: slice scan
/// times, spatial smoothing, high-pass or else linear trend, temporal Gaussian. Choices that can't
/// be carried out are found before the first sample is changed. When memory runs out in the middle,
/// the samples that were already written stay. `kept` receives the samples as they were, for the
/// work can be cancelled, also while its result is written. Must not be called while a run is being
/// measured.
[[nodiscard]] PostprocessingResult postprocessRun(FMRProject& project, int nrOfMeasuredVolumes,
                                                  const PostprocessingOptions& options,
                                                  VolumeBackup& backup, ProgressReporter& progress);

/// Writes the data (.stc) and the header (.fmr) of the run into its target folder under the names
/// that record the options; the project keeps its own names. False after a message; also when the
/// options leave the names as they are, since the files of the run would be replaced. Without one,
/// and without files, when the work is cancelled before the data are written.
[[nodiscard]] bool writePostprocessedRun(FMRProject& project, int nrOfMeasuredVolumes,
                                         const PostprocessingOptions& options,
                                         ProgressReporter* progress = nullptr);
