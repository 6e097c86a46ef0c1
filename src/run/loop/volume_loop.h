// The volume loop: every volume of a run in turn, from the wait for its files to the updated maps.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/loop/run_parts.h"

enum class LoopEnd {
    NotStarted,  ///< no memory for the model; no volume was read, nothing is saved
    Complete,    ///< last volume, a time-out, or a listener that ended the run; saved
    Interrupted, ///< the operator's stop; saved likewise
};

/// Runs the loop on a prepared run and saves what was recorded. Every failure inside ends the loop
/// by itself, after its message.
LoopEnd runVolumeLoop(const RunParts& run, VolumeReader& reader);
