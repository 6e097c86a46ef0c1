// The built-in colour table of matrices.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "display/plots/plot_content.h"

#include <QRgb>

/// Levels of each sign; the table has them for negative values first.
inline constexpr int nrOfMatrixLevels = 32;

/// The colour of level 0 to 2 * nrOfMatrixLevels - 1: the lowest is a bright blue, the highest a
/// bright yellow, those in the middle are nearly as dark as the background.
[[nodiscard]] QRgb matrixLevelColor(int level);

/// The level of a value in a usable range; values outside have the nearest one, -1 stands for one
/// that is no number.
[[nodiscard]] int matrixLevel(double value, const PlotRange& range);
