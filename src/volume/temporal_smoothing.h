// Gaussian smoothing of the time courses of a run.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "volume/fmr_project.h"
#include "volume/postprocessing_options.h"
#include "volume/step_progress.h"

/// The full width at half maximum in volumes: data points as they are, seconds divided by TR. 0
/// when the width or the TR is none.
[[nodiscard]] double widthInVolumes(const FMRHeader& header, const TemporalOptions& options);

/// False after a message when the width is not above 0.
[[nodiscard]] bool temporalSmoothingIsPossible(const FMRHeader& header,
                                               const TemporalOptions& options);

/// Replaces each sample by the mean of its neighbours in time under a Gaussian that is cut at four
/// standard deviations. Near the ends of the run the weights of the volumes that exist are divided
/// by their sum. Samples are limited to 0 to 32767. False after a message, or when cancelled, with
/// part of the voxels smoothed.
[[nodiscard]] bool smoothTimeCourses(FMRProject& project, int nrOfVolumes,
                                     const TemporalOptions& options, const StepProgress& progress);
