// Removal of slow drifts from the time courses of a run.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/progress.h"
#include "volume/fmr_project.h"

#include <QString>
#include <vector>

/// nrOfPoints rows of 2 * cycles + 2 values: sine and cosine of k cycles for k = 1 to `cycles`, a
/// linear column 2t / (N - 1) - 1 (0 for a single point), the constant 1. Computed in double,
/// stored as floats. Empty for less than 0 cycles or 1 point.
[[nodiscard]] std::vector<float> fillFourierDesign(int cycles, int nrOfPoints);

/// Writes the design to `DM-Fourier.txt` in a folder, or in the current one if that is empty, one
/// line for each time point. False when it can't be written; the file is only for users to look at,
/// so there is no message.
[[nodiscard]] bool writeFourierDesign(const std::vector<float>& design, int nrOfPoints,
                                      const QString& workingFolder);

/// With more pairs of sine and cosine the inversion would block cancelling for seconds; long runs
/// need a few dozen.
inline constexpr int maximumHighPassCycles = 100;

/// False after a message when a high-pass filter with this many pairs of sine and cosine has no
/// unique solution for so many volumes, or the number is below 0 or above the limit.
[[nodiscard]] bool highPassIsPossible(int nrOfVolumes, int cycles);

/// Fits sines and cosines of 1 to `cycles` cycles over the first volumes of the run, a straight
/// line and a constant to each voxel's time course by least squares, and subtracts all but the
/// constant. Samples are clamped to 0 to 32767. The design is written to "DM-Fourier.txt" in the
/// current folder, if possible. False after a message, with the samples as they were, or when
/// cancelled, with part of the voxels filtered.
[[nodiscard]] bool highPassFourier(FMRProject& project, int nrOfVolumes, int cycles,
                                   const StepProgress& progress);

/// The same with the straight line only, and without the file; the mean of a time course is kept. A
/// single volume has no trend.
[[nodiscard]] bool removeLinearTrend(FMRProject& project, int nrOfVolumes,
                                     const StepProgress& progress);
