// What the strip of times below the motion plot shows.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "display/plots/plot_content.h"
#include "run/document/volume_ledger.h"

/// The work of each volume in milliseconds as a stacked bar, with a line at the TR. The range
/// always holds the TR and ends at three times the TR: longer bars are cut off there. Volumes are
/// counted from 1; `planned` of them have room.
[[nodiscard]] PlotContent timingStripContent(const VolumeLedger& ledger, int planned);

/// The numbers of the last volume in one line of fixed width, and how many volumes need more than
/// three quarters of the TR.
[[nodiscard]] QString timingReadOut(const VolumeLedger& ledger);
