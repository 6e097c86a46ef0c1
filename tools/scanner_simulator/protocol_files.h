// The protocol of a session: complete before the run, or in lines that arrive while it goes on.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "simulated_course.h"

#include <QByteArray>

/// What the protocol of a run is made from.
struct ProtocolSource {
    const SimulationOptions& options;
    const std::vector<SimulatedCondition>& conditions;
};

/// A protocol of conditions in volumes, complete (.prt).
[[nodiscard]] QByteArray prtText(const std::vector<SimulatedCondition>& conditions);

/// Real-time protocol in volumes (.rtp): what stands in the file before the run.
[[nodiscard]] QByteArray rtpHeader(const ProtocolSource& source);
/// Its lines that are due when a measured volume, from 0, is there: the state of the conditions in
/// the analysed volume behind it, since that is what its analysis waits for. The first analysed
/// volume also has its own state, the last one the end of the scan.
[[nodiscard]] QByteArray rtpLines(const ProtocolSource& source, int volume);

/// Log of a stimulation computer (.tdat): what stands in the file before the run. All conditions
/// are in the model, the baseline first.
[[nodiscard]] QByteArray tdatHeader(const ProtocolSource& source);
/// Its lines that are due when a measured volume, from 0, is there: the block that ended before it,
/// and the block or the volume that begins. The last ones are the end of the last block and of the
/// run. Times in milliseconds from the start of the first analysed volume; nothing is logged before
/// it.
[[nodiscard]] QByteArray tdatLines(const ProtocolSource& source, int volume);

/// Name, without folder, of the protocol of a run. A complete one serves all runs of a session.
[[nodiscard]] QString protocolFileName(const SimulationOptions& options);
/// What stands in the file before the run.
[[nodiscard]] QByteArray protocolHeader(const ProtocolSource& source);
/// What is appended to it when a volume is there; nothing for a complete protocol.
[[nodiscard]] QByteArray protocolLines(const ProtocolSource& source, int volume);
/// Writes what stands in the file before the run, into the session folder; a file that holds just
/// that stays. False when that fails.
[[nodiscard]] bool writeProtocolHeader(const ProtocolSource& source);
