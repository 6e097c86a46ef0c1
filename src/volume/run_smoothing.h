// Smoothing of a whole run: each volume in space, each voxel in time.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/progress.h"
#include "base/worker_pool.h"
#include "volume/fmr_project.h"
#include "volume/postprocessing_options.h"

/// False after a message when the width is not above 0, the voxel size that it needs is unknown, or
/// the kernels of the space domain would be too wide.
[[nodiscard]] bool runSmoothingIsPossible(const FMRHeader& header,
                                          const SpatialSmoothingOptions& options);

/// Smooths the first volumes of the run in the domain that the options choose: smoothing.h or
/// frequency_smoothing.h. In 2-D each slice is smoothed on its own. False after a message, or when
/// cancelled, with part of the volumes smoothed.
[[nodiscard]] bool smoothRun(FMRProject& project, int nrOfVolumes,
                             const SpatialSmoothingOptions& options, const StepProgress& progress,
                             WorkerPool& workers = callersThread());

/// The full width at half maximum in volumes: data points unchanged, seconds divided by TR. 0 if
/// that is not a positive number.
[[nodiscard]] double widthInVolumes(const FMRHeader& header, const TemporalOptions& options);

/// False after a message when the width is not above 0.
[[nodiscard]] bool temporalSmoothingIsPossible(const FMRHeader& header,
                                               const TemporalOptions& options);

/// Replaces each sample by the mean of its neighbours in time under a Gaussian that is truncated at
/// four standard deviations. Near the ends of the run the weights of the existing volumes are
/// normalised. Samples are clamped to 0 to 32767. False after a message, or when cancelled, with
/// part of the voxels smoothed.
[[nodiscard]] bool smoothTimeCourses(FMRProject& project, int nrOfVolumes,
                                     const TemporalOptions& options, const StepProgress& progress);
