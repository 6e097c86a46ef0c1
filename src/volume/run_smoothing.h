// Spatial smoothing of all volumes of a run.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "volume/fmr_project.h"
#include "volume/postprocessing_options.h"
#include "volume/step_progress.h"

/// False after a message when the width is not above 0, the voxel size that it needs is not known,
/// or the kernels of the space domain would be too wide.
[[nodiscard]] bool runSmoothingIsPossible(const FMRHeader& header,
                                          const SpatialSmoothingOptions& options);

/// Smooths the first volumes of the run in the domain that the options choose: smoothing.h or
/// frequency_smoothing.h. In 2-D the slices stay apart. False after a message, or when cancelled,
/// with part of the volumes smoothed.
[[nodiscard]] bool smoothRun(FMRProject& project, int nrOfVolumes,
                             const SpatialSmoothingOptions& options, const StepProgress& progress);
