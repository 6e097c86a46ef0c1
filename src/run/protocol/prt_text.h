// The text of protocol files (.prt).
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
    QString damage;        ///< what is wrong, when damaged
    QString fullCondition; ///< the first condition with more than 300 intervals; empty: none
    bool hasFullCondition = false;
    bool hasCutText = false; ///< a name or the buttons of a response were longer than their record
};

/// Fills the model from the text of a file. Key words are skipped, not compared. When the result is
/// not good the model holds what came before the failure. Without `withResponses` the response
/// table is left out.
[[nodiscard]] PRTParsing parsePRT(const QString& text, bool withResponses,
                                  StimulationProtocol& protocol);

/// The content of a file, UTF-8.
[[nodiscard]] QByteArray prtText(const StimulationProtocol& protocol);
