// Post-processing of a measured run: slice times, motion, smoothing, slow drifts.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/progress.h"
#include "volume/motion_correction.h"
#include "volume/postprocessing_options.h"
#include "volume/volume_backup.h"

#include <functional>

enum class PostprocessingResult {
    Done,
    NothingToDo, ///< no volume, or no step chosen
    Cancelled,   ///< the samples are restored
    Failed,      ///< after a message
};

/// Runs the checked steps on the first volumes of the run, as many as were measured: slice scan
/// times, motion, spatial smoothing, high-pass or else linear trend, temporal Gaussian. Impossible
/// choices are found before any sample is changed. When memory runs out midway, samples already
/// written stay, but with a motion correction among the steps they are restored. `backup` receives
/// the original samples, since the work can be cancelled, even while its result is written;
/// `motion`, a new one, what the correction finds (run_motion.h). Must not be called while a run is
/// being measured.
[[nodiscard]] PostprocessingResult postprocessRun(FMRProject& project, int nrOfMeasuredVolumes,
                                                  const PostprocessingOptions& options,
                                                  VolumeBackup& backup, MotionCorrection& motion,
                                                  ProgressReporter& progress,
                                                  WorkerPool& workers = callersThread());

/// Writes the data (.stc) and the header (.fmr) of the run into its target folder under the names
/// that record the options; the project keeps its own names. False after a message, also when the
/// options leave the names unchanged, since the run's own files would be replaced; false without
/// message or files when cancelled before the data are written. `writeMore` writes what else goes
/// with the data, while the project has its new names; without it there is no header either.
[[nodiscard]] bool writePostprocessedRun(FMRProject& project, int nrOfMeasuredVolumes,
                                         const PostprocessingOptions& options,
                                         ProgressReporter* progress = nullptr,
                                         const std::function<bool()>& writeMore = {});
