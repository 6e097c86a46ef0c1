// The protocol of a session: complete before the run, or growing line by line during it.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "simulated_dynamics.h"

#include <QByteArray>

/// Inputs of a run's protocol.
struct ProtocolSource {
    const SimulationOptions& options;
    const std::vector<SimulatedCondition>& conditions;
};

/// What is measured, for the operator.
[[nodiscard]] QByteArray experimentName(const SimulationOptions& options);
/// A protocol in volumes, complete (.prt).
[[nodiscard]] QByteArray prtText(const ProtocolSource& source);

/// Real-time protocol in volumes (.rtp): the content of the file before the run.
[[nodiscard]] QByteArray rtpHeader(const ProtocolSource& source);
/// Its lines that are due with a measured volume, from 0: the state of the conditions in the next
/// analysed volume, since that is what the analysis waits for. The first analysed volume also has
/// its own state, the last one the end of the scan.
[[nodiscard]] QByteArray rtpLines(const ProtocolSource& source, int volume);

/// Log of a stimulation computer (.tdat): the content of the file before the run. All conditions
/// are in the model, the baseline first.
[[nodiscard]] QByteArray tdatHeader(const ProtocolSource& source);
/// Its lines that are due with a measured volume, from 0: the block that ended before it, and the
/// block or the volume that begins. The last ones are the end of the last block and of the run.
/// Times in milliseconds from the start of the first analysed volume; nothing is logged before it.
[[nodiscard]] QByteArray tdatLines(const ProtocolSource& source, int volume);

/// Name, without folder, of the protocol of a run. A complete one serves all runs of a session.
[[nodiscard]] QString protocolFileName(const SimulationOptions& options);
/// The content of the file before the run.
[[nodiscard]] QByteArray protocolHeader(const ProtocolSource& source);
/// The lines appended with a volume; empty for a complete protocol.
[[nodiscard]] QByteArray protocolLines(const ProtocolSource& source, int volume);
/// Writes the content before the run into the session folder; a file that already holds exactly
/// that is kept. False when that fails.
[[nodiscard]] bool writeProtocolHeader(const ProtocolSource& source);
