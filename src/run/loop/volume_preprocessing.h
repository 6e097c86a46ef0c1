// Corrections of a volume before anybody but the journal uses it.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/loop/run_parts.h"

/// Motion correction, then smoothing, as the settings ask for them. Volume 0 is never corrected: it
/// is the target of the others, unless that comes from another run. Processes no events.
void preprocessVolume(const RunParts& run, int volumeIndex);
