// The text format of design matrices, motion logs and reference time courses (.rtc).
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "stats/design_matrix.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <vector>

/// Content of a file. `columns` has one vector for each predictor (version 2) or series (version
/// 1).
struct RTCFile {
    int version = 2;
    QString type = "DesignMatrix"; ///< empty in version 1
    QStringList names;             ///< one for each column; empty in version 1
    int nrOfDataPoints = 0;
    std::vector<std::vector<float>> columns;
};

/// How a version 1 series gives its title: as two tokens, or as one token and the rest of the line.
enum class RTCTitle { TwoTokens, Line };
enum class RTCScope { Names, All };
enum class RTCParseResult { Ok, UnknownFormat, Incomplete };

/// Parses either version. `UnknownFormat` when the first token is neither of the two keywords or a
/// version 2 file has no "Type:"; `Incomplete` when counts, names or values are missing or the
/// counts exceed what the text can hold. The caller checks the type. `Names` leaves `columns` empty
/// and needs no values.
[[nodiscard]] RTCParseResult parseRTC(const QString& text, RTCFile& file,
                                      RTCScope scope = RTCScope::All,
                                      RTCTitle title = RTCTitle::TwoTokens);

/// printf format of a value.
enum class RTCNumbers {
    Plain,   ///< "%8.6f"
    Aligned, ///< "%12.6f"
};
/// The version 2 text. Values of a line are separated by one blank; a double quote in a name
/// becomes "'".
[[nodiscard]] QByteArray rtcText(const RTCFile& file, RTCNumbers numbers);

/// The first NrOfPredictors columns of a design with their names.
[[nodiscard]] RTCFile rtcFileOf(const DesignMatrix& design);

/// Writes the design of a run with plain numbers, atomically. False after a message.
[[nodiscard]] bool writeDesignMatrixRTC(const DesignMatrix& design, const QString& fileName);
/// The same for any design.
[[nodiscard]] bool writeDesignMatrixRTC(const RTCFile& design, const QString& fileName);
/// Writes any design with aligned numbers, atomically. False after a message.
[[nodiscard]] bool writeGLMDesignMatrixRTC(const RTCFile& design, const QString& fileName);

/// Predictor names of a design matrix file, joined by ", ". A version 1 file or one of another type
/// gives " "; a file that can't be opened or has an unknown format gives a null string after a
/// message. No name, or a single empty one, gives an empty string that is not null.
[[nodiscard]] QString readPredictorNamesOfRTC(const QString& fileName);
