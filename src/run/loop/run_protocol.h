// The protocol of a run: read when the run is prepared, or continuously while it arrives.
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

/// Reads the protocol on until what this volume needs is known, rebuilds the condition columns when
/// intervals have changed, and renews the schedule of the model while conditions are still to
/// enter it. Does nothing for a run whose protocol was complete at its start.
///
/// A log (.tdat) must cover the start of the volume, a real-time protocol (.rtp) that of the next
/// one. False, after a message, when that does not come within timeOutMilliseconds, or when memory
/// for the design runs out; without one when the pump gives up waiting. Events are processed while
/// it waits.
[[nodiscard]] bool updateProtocol(const RunParts& run, int volumeIndex);

/// The lines that are taken are recorded under this name; an empty one stands for a line that was
/// too long to be read.
inline constexpr char protocolLineRecord[] = "protocol line";

/// The file of the protocol that arrives during the run; nullptr when it was complete.
[[nodiscard]] GrowingTextFile* arrivingLines(QtCortivoDoc& document);

/// Closes the files of such a protocol.
void closeProtocol(QtCortivoDoc& document);
