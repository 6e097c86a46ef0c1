// Protocol files (.prt) on disk.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/protocol/prt_text.h"

/// Whether the response table of a file is of interest.
enum class ResponseTable {
    Skip, ///< a new run collects its own responses
    Read, ///< saved data is reloaded
};

/// Reads protocol.protocolPath. False, after a message and with the path cleared, when the file
/// can't be opened or is damaged; the rest of the model is as before then.
[[nodiscard]] bool readPRTFile(StimulationProtocol& protocol, ResponseTable responses);

/// Writes the model to protocol.protocolPath. False, after a message and with the path cleared,
/// when that fails.
[[nodiscard]] bool writePRTFile(StimulationProtocol& protocol);

/// Writes the protocol of a finished run into the target folder and makes that file the protocol
/// path: under the name of its own file, or of the project when it was recorded during the run;
/// "realtime.prt" when there is no such name. Fails like writePRTFile().
[[nodiscard]] bool writeRecordedPRTFile(StimulationProtocol& protocol,
                                        const QString& projectFileName,
                                        const QString& targetFolder);
