// The design of the Fourier high-pass filter.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <vector>

/// nrOfPoints rows of 2 * cycles + 2 values: sine and cosine of k cycles for k = 1 to `cycles`, a
/// linear column 2t / (N - 1) - 1 (0 for a single point), the constant 1. Computed in double,
/// stored as floats. Empty for sizes below 0 cycles or 1 point.
[[nodiscard]] std::vector<float> fillFourierDesign(int cycles, int nrOfPoints);

/// Writes the design to `DM-Fourier.txt` in a folder, or in the current one if that is empty, one
/// line for each time point. False when it can't be written; nothing reads the file but people, so
/// there is no message.
[[nodiscard]] bool writeFourierDesign(const std::vector<float>& design, int nrOfPoints,
                                      const QString& workingFolder);
