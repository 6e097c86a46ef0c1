// The design of the Fourier high-pass filter.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <vector>

/// Columns of nrOfPoints values: sine and cosine of k cycles for k = 1 to `cycles`, a linear column
/// 2t / (N - 1) - 1 (0 for a single point), the constant 1. Empty for sizes below 0 cycles or 1
/// point.
[[nodiscard]] std::vector<std::vector<double>> fillFourierDesign(int cycles, int nrOfPoints);

/// Writes the design to `DM-Fourier.txt` in a folder, one line for each time point. False when it
/// can't be written; nothing reads the file but people, so there is no message.
[[nodiscard]] bool writeFourierDesign(const std::vector<std::vector<double>>& columns,
                                      const QString& workingFolder);
