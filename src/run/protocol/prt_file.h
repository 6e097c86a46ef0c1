// Protocol files (.prt): their text, and the files on disk.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/protocol/stimulation_protocol.h"

enum class PRTResult {
    Good,
    Damaged,
    InsufficientMemory,
};

struct PRTParsing {
    PRTResult result = PRTResult::Good;
    QString damage;        ///< the reason, when damaged
    QString fullCondition; ///< the first condition with more than 300 intervals; empty: none
    bool hasFullCondition = false;
    bool hasCutText = false; ///< a name or the buttons of a response were truncated
};

/// Fills the protocol from the text of a file. Keywords are skipped, not compared. If the result is
/// not good the protocol holds what came before the failure. Without `withResponses` the response
/// table is skipped.
[[nodiscard]] PRTParsing parsePRT(const QString& text, bool withResponses,
                                  StimulationProtocol& protocol);

/// The content of a file, UTF-8.
[[nodiscard]] QByteArray prtText(const StimulationProtocol& protocol);

/// Whether to read the response table of a file.
enum class ResponseTable {
    Skip, ///< a new run collects its own responses
    Read, ///< a saved run is reloaded
};

/// Reads protocol.protocolPath. False, after a message and with the path cleared, when the file
/// can't be opened or is damaged; the rest of the protocol is then unchanged.
[[nodiscard]] bool readPRTFile(StimulationProtocol& protocol, ResponseTable responses);

/// Writes the protocol to protocol.protocolPath. On failure false, after a message and with the
/// path cleared.
[[nodiscard]] bool writePRTFile(StimulationProtocol& protocol);

/// Writes the protocol of a finished run into the target folder and sets the protocol path to that
/// file. Its name is that of the original file, or of the project for a protocol recorded during
/// the run; "realtime.prt" when there is neither. Fails like writePRTFile().
[[nodiscard]] bool writeRecordedPRTFile(StimulationProtocol& protocol,
                                        const QString& projectFileName,
                                        const QString& targetFolder);
