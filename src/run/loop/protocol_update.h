// The loop's step for a protocol that arrives during the run.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/loop/run_parts.h"

/// Reads the protocol on until what this volume needs is known, rebuilds the condition columns when
/// intervals have changed, and renews the schedule of the model while conditions are still to
/// enter it. Does nothing for a run whose protocol was complete at its start.
///
/// A log (.tdat) must cover the start of the volume, a real-time protocol (.rtp) that of the next
/// one. False, after a message, when that does not come within timeOutMilliseconds, or when memory
/// for the design runs out. Events are processed while it waits.
[[nodiscard]] bool updateProtocol(const RunParts& run, int volumeIndex);

/// Closes the files of such a protocol.
void closeProtocol(QtCortivoDoc& document);
