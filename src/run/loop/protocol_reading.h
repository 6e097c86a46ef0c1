// The protocol of a run, read when the run is prepared.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/loop/run_parts.h"

/// Reads the protocol that the settings name: a log (.tdat), else a real-time protocol (.rtp), else
/// a finished one (.prt). Of the first two the header is read and the file stays open; what the
/// header says on TR and motion correction goes into the settings of this run. Without any the run
/// has no protocol yet, and the loop will tell.
///
/// False after a message; for a protocol that arrives during the run the program ends with status
/// 1 then.
[[nodiscard]] bool readProtocol(const RunParts& run);
