// What happens to the samples of a volume before anything looks at them.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/loop/run_parts.h"

/// Motion correction, then smoothing, as the settings ask for them. Volume 0 is never corrected: it
/// is the target of the others, unless that comes from another run. Processes no events.
void preprocessVolume(const RunParts& run, int volumeIndex);
