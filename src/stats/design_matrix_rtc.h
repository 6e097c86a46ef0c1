// The text format of design matrices, motion logs and reference time courses (.rtc).
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "stats/design_matrix.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <vector>

/// What a file holds. `columns` has one vector for each predictor (version 2) or series (version
/// 1).
struct RTCFile {
    int version = 2;
    QString type = "DesignMatrix"; ///< empty in version 1
    QStringList names;             ///< one for each column; empty in version 1
    int nrOfDataPoints = 0;
    std::vector<std::vector<float>> columns;
};

/// How a version 1 series states its title: as two tokens, or as one token and the rest of the
/// line.
enum class RTCTitle { TwoTokens, Line };
enum class RTCScope { Names, All };
enum class RTCParseResult { Ok, UnknownFormat, Incomplete };

/// Reads either version from its text. `UnknownFormat` when the first token is none of the two
/// keywords or a version 2 file has no "Type:", `Incomplete` when counts, names or values are
/// missing or the counts exceed what the text can hold. The type is for the caller to check.
/// `Names` leaves `columns` empty and needs no values.
[[nodiscard]] RTCParseResult parseRTC(const QString& text, RTCFile& file,
                                      RTCScope scope = RTCScope::All,
                                      RTCTitle title = RTCTitle::TwoTokens);

/// The version 2 text. `valueFormat` is the printf form of one value; values of a line are
/// separated by one blank. A double quote in a name becomes "'".
enum class RTCNumbers {
    Plain,   ///< "%8.6f"
    Aligned, ///< "%12.6f"
};
[[nodiscard]] QByteArray rtcText(const RTCFile& file, RTCNumbers numbers);

/// The first NrOfPredictors columns of a design with their names.
[[nodiscard]] RTCFile rtcFileOf(const DesignMatrix& design);

/// Writes the design of a run, numbers plain. False after a message, without a partial file.
[[nodiscard]] bool writeDesignMatrixRTC(const DesignMatrix& design, const QString& fileName);
/// Writes any design, numbers aligned. False after a message, without a partial file.
[[nodiscard]] bool writeGLMDesignMatrixRTC(const RTCFile& design, const QString& fileName);

/// Predictor names of a design matrix file, joined by ", ". A version 1 file or one of another type
/// gives " "; a file that can't be opened or is of no known format gives an empty string after a
/// message.
[[nodiscard]] QString readPredictorNamesOfRTC(const QString& fileName);
