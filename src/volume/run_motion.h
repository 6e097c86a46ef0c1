// Motion correction of a whole run that is in memory.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/progress.h"
#include "volume/motion_correction.h"
#include "volume/postprocessing_options.h"

/// False after a message when there is no volume beside the target, or no such target.
[[nodiscard]] bool runMotionIsPossible(int nrOfVolumes, const RunMotionOptions& options);

/// Aligns the first volumes of the run, in order, to one of them, which stays as it is. With volume
/// 0 as the target samples, parameters and log are, bit for bit, those of a run that is corrected
/// while it is measured. `motion`, a new one, gets parameters, volumes not found, and the log,
/// which is kept and not written. False, with part of the volumes moved: after a message when
/// memory runs out or the run doesn't allow a correction; without one when cancelled.
[[nodiscard]] bool correctRunMotion(FMRProject& project, int nrOfVolumes,
                                    const RunMotionOptions& options, MotionCorrection& motion,
                                    const StepProgress& progress,
                                    WorkerPool& workers = callersThread());
