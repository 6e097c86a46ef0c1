// The data files (.stc) of a saved run: their names, and where samples lie in them. For the readers
// of stc_file.h and stc_slice_reader.h.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "volume/fmr_project.h"

#include <span>

class QIODevice;

/// Two 16-bit sizes at the start of a file of one slice.
inline constexpr qint64 stcSliceFileHeaderBytes = 4;

/// Bytes of one slice of one volume.
[[nodiscard]] qint64 stcSliceBytes(const FMRHeader& header);
/// The file of a slice, from 0, in format 1. It is named with the prefix of the header, which may
/// have lost its "-".
[[nodiscard]] QString stcSliceFileName(const FMRHeader& header, const QString& folder, int slice);
/// The file to read in format 2.
[[nodiscard]] QString stcDataFileName(const FMRHeader& header, const QString& folder);
/// The message about a file that ends too early.
[[nodiscard]] QString stcTooShort(const QString& fileName);
/// Reads samples at the position of the file; false when it ends too early.
[[nodiscard]] bool readSTCSamples(QIODevice& file, std::span<int16_t> samples);

/// The data files of a saved run, in the folder of its header.
class SavedSeries {
public:
    /// `header` is that of the file `targetFMR`; it stays alive, and loses a "-" at the end of its
    /// prefix.
    SavedSeries(FMRHeader& header, const QString& targetFMR);

    /// The file that holds a slice, from 0.
    [[nodiscard]] QString nameOf(int slice) const;
    /// Where the samples of a slice begin at this volume.
    [[nodiscard]] qint64 offset(int slice, int volume) const;
    /// Why the file that holds a slice can't be read; empty when it can.
    [[nodiscard]] QString fault(int slice) const;
    /// True with one file for each slice (format 1).
    [[nodiscard]] bool perSlice() const { return header_.DataStorageFormat == 1; }

private:
    [[nodiscard]] qint64 seriesBytes() const;

    FMRHeader& header_;
    QString folder_;
    QString common_;
};
