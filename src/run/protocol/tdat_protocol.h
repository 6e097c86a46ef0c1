// The log file of a stimulation computer (.tdat), which the program follows while it is written.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/protocol/arriving_lines.h"
#include "run/protocol/protocol_contrasts.h"
#include "run/protocol/protocol_lines.h"

#include <QStringList>

/// What is known of such a log beside its conditions and intervals. All texts are in upper case, as
/// everything in the file is compared.
struct TDATState {
    QString tdatEventWord;      ///< what the words for the begin and the end of an event start with
    bool tdatFirstEvent = true; ///< none has come yet
    int tdatTimeOrigin = 0;     ///< milliseconds, time stamp of the first event
    int tdatCurrentCondition = -1; ///< of the latest event; -1 when it is not in the model
    QString tdatCurrentName;       ///< of the latest event
    bool runEnded = false;         ///< "RUNEND" has come
    bool badLineReported = false;  ///< the operator knows that lines are passed over
    QStringList otherConditions;   ///< declared, but no predictors: their events are passed over
    int fileVersion = 0;
    QString analysisOptions;
    ProtocolContrasts contrasts; ///< what the header says on contrasts
};

/// Settings that the header gives for this run.
struct TDATSettings {
    std::optional<int> TR; ///< milliseconds, 1 to an hour
    std::optional<bool> motionCorrection;
};

/// Reads the header from whole lines. It ends before the line that has the first word "SCAN".
[[nodiscard]] HeaderParsing parseTDATHeader(const QString& text, StimulationProtocol& protocol,
                                            TDATState& state, TDATSettings& settings);

/// Takes one line. Lines without the word "SCAN" and those of other kinds have no effect; of the
/// first line that lacks a value the operator is told.
[[nodiscard]] LineEffect takeTDATLine(const QString& line, StimulationProtocol& protocol,
                                      TDATState& state);

/// The log of a run with its file.
struct TDATProtocol {
    TDATState state;
    ArrivingLines lines;
    LineMessages messages;
};

/// Reads the header and leaves the file open. False after a message, in which `settingsFile` stands
/// for the place to look at.
[[nodiscard]] bool readTDATFile(const QString& path, const QString& settingsFile,
                                StimulationProtocol& protocol, TDATProtocol& tdat,
                                TDATSettings& settings);

/// Takes one line, if a whole one has come; closes the file at "RUNEND".
ProtocolUpdate readTDATUpdate(StimulationProtocol& protocol, TDATProtocol& tdat);
