// The header file of a functional run (.fmr): versions 1 to 5 are read, version 5 is written.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "volume/fmr_project.h"

#include <QByteArray>

/// How much of a header is read.
enum class FMRScope {
    Inspection, ///< other runs: keys of the sizes are not checked, slice positions are skipped
    Project,    ///< the current run: sizes must have their keys, slice positions are read
};

enum class FMRParseResult { Ok, UnexpectedTokens, UnsupportedVersion, ImpossibleSizes };

/// Largest sizes that a header may state: what the 16-bit sizes of the data files can hold.
inline constexpr int maximumFMRSize = 32767;
inline constexpr int maximumFMRVolumes = 1000000;

/// Reads a header from its text. `header` is defined only after Ok. Sizes are at least 1 and at
/// most the limits above, so that the bytes of a volume and those of a slice's series fit into 64
/// bits. Data of versions below 5 are in one file per slice: DataStorageFormat is then 1.
[[nodiscard]] FMRParseResult parseFMR(const QString& text, FMRScope scope, FMRHeader& header);

/// Reads a file for inspection and leaves the current project alone. False after a message;
/// `header` is then unchanged. A protocol is linked if header.ProtocolFiles is not empty. A prefix
/// with a folder is reduced to its file name, with a message.
[[nodiscard]] bool readFMRHeader(const QString& fileName, FMRHeader& header);
/// The same for either scope.
[[nodiscard]] bool readFMRFile(const QString& fileName, FMRScope scope, FMRHeader& header);

/// The version 5 text of a header. Floats have the shortest form that reads back as the same float;
/// a double quote inside a text becomes "'", since the format has no escape.
[[nodiscard]] QByteArray fmrText(const FMRHeader& header, int nrOfVolumes);

/// Writes the header. "NrOfVolumes:" becomes the smaller of `nrOfVolumesWritten` and the analysed
/// volumes. The prefix becomes prefixOfFiles() and a slice gap below 1e-06 mm becomes 0, in the
/// project too, with a message if the prefix names a folder. False after a message, with an
/// existing file untouched.
[[nodiscard]] bool writeFMRHeader(FMRProject& project, const QString& fileName,
                                  int nrOfVolumesWritten);

/// The prefix for the header and the name of the data file: without trailing "-" and without a
/// folder, since the data are beside the header; with "'" for a double quote; empty for "<none>".
/// Applying it twice changes nothing more.
[[nodiscard]] QString prefixOfFiles(const QString& prefix);
/// True when the prefix names a folder; "\" counts as "/".
[[nodiscard]] bool namesFolder(const QString& prefix);
