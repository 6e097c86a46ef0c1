// Slice scan time correction: all slices of a volume as if measured at the same time.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/progress.h"
#include "volume/fmr_project.h"
#include "volume/postprocessing_options.h"

/// Position of a slice in the acquisition order of a volume, both from 0. With neither direction
/// set it is `lastPosition`.
[[nodiscard]] int timePositionOfSlice(int slice, int nrOfSlices,
                                      const SliceScanTimeOptions& options, int lastPosition);

/// False after a message when the slices of a volume take longer than TR, or a time is invalid.
/// With options.measuredTimes the header must have a time for each slice, from 0 to below TR.
[[nodiscard]] bool sliceTimesAreValid(const FMRHeader& header,
                                      const SliceScanTimeOptions& options = {});

/// Moves the time course of every voxel back by its slice's delay within the volume, over the first
/// volumes of the run. Volume 0 is unchanged. Samples are read and written as unsigned, up to
/// 65535. Sinc interpolation takes six samples under a Hann window, and is linear near the ends of
/// the run. False after a message, or when cancelled, with part of the voxels corrected.
[[nodiscard]] bool correctSliceScanTime(FMRProject& project, int nrOfVolumes,
                                        const SliceScanTimeOptions& options,
                                        const StepProgress& progress);
