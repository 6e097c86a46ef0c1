// The values of a plot in words.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "display/plots/plot_content.h"

/// A number as a read-out shows it.
[[nodiscard]] QString readOutNumber(double value);

/// One line for each of: the place, the intervals there, the curves at their point next to `x`, the
/// marks there; or the bar there.
[[nodiscard]] QString readOut(const PlotContent& content, double x);
