// The log file of a stimulation computer (.tdat), read while it is written.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/protocol/growing_text_file.h"
#include "run/protocol/protocol_lines.h"

#include <QStringList>

/// State of such a log besides its conditions and intervals. All texts are in upper case, since
/// comparisons ignore case.
struct TDATState {
    QString tdatEventWord;         ///< prefix of the words for the begin and the end of an event
    bool tdatFirstEvent = true;    ///< none was read yet
    int tdatTimeOrigin = 0;        ///< milliseconds, time stamp of the first event
    int tdatCurrentCondition = -1; ///< of the latest event; -1 when it is not in the model
    QString tdatCurrentName;       ///< of the latest event
    bool runEnded = false;         ///< "RUNEND" was read
    bool badLineReported = false;  ///< a skipped line has been reported
    QStringList otherConditions;   ///< declared, but not predictors: their events are skipped
    int fileVersion = 0;
    QString analysisOptions;
    ProtocolContrasts contrasts; ///< from the header
};

/// Settings that the header overrides for this run.
struct TDATSettings {
    std::optional<int> TR; ///< milliseconds, 1 to an hour
    std::optional<bool> motionCorrection;
};

/// Parses the header from complete lines. It ends before the line with the first word "SCAN".
[[nodiscard]] HeaderParsing parseTDATHeader(const QString& text, StimulationProtocol& protocol,
                                            TDATState& state, TDATSettings& settings);

/// Applies one line. Lines without the word "SCAN" and those of other kinds have no effect; the
/// first line that lacks a value is reported.
[[nodiscard]] LineEffect applyTDATLine(const QString& line, StimulationProtocol& protocol,
                                       TDATState& state);

/// The log of a run with its file.
struct TDATProtocol {
    TDATState state;
    GrowingTextFile lines;
    LineMessages messages;
};

/// Reads the header and leaves the file open. False after a message, which names `settingsFile` as
/// the place to check.
[[nodiscard]] bool readTDATFile(const QString& path, const QString& settingsFile,
                                StimulationProtocol& protocol, TDATProtocol& tdat,
                                TDATSettings& settings);

/// Applies the next line if it is complete; closes the file at "RUNEND".
ProtocolUpdate readTDATUpdate(StimulationProtocol& protocol, TDATProtocol& tdat);
