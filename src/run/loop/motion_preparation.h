// The motion target of a run that is being prepared.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/loop/run_parts.h"

/// With motion correction: memory for the target, which volume 0 fills, or the target of another
/// run of the session. False after a message. A shortage of memory, or data files of the other run
/// that are missing or too short, end the program with status 1.
[[nodiscard]] bool prepareMotionTarget(const RunParts& run);
