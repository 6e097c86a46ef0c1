// Reading the data of a saved run slice by slice, without the run in memory.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "volume/saved_series.h"

#include <QFile>
#include <memory>

/// A saved run whose data files, of either format, are beside its header. A file is opened once.
/// Nothing here ends the program.
class STCSliceReader {
public:
    /// Reads the header and checks all data files against its sizes. Null, after a message, when
    /// one of them is missing, damaged, short or of another matrix.
    [[nodiscard]] static std::unique_ptr<STCSliceReader> open(const QString& targetFMR);

    STCSliceReader(const STCSliceReader&) = delete;
    STCSliceReader& operator=(const STCSliceReader&) = delete;

    [[nodiscard]] const FMRHeader& header() const { return header_; }
    /// Samples of one slice of all volumes.
    [[nodiscard]] size_t samplesOfSlice() const {
        return header_.sliceSamples() * size_t(header_.NrOfVolumes);
    }
    /// Reads all volumes of one slice, from 0, into samplesOfSlice() samples, volume after volume.
    /// False, after a message, when the file has gone or ends too early.
    [[nodiscard]] bool readSlice(int slice, std::span<int16_t> samples);

private:
    STCSliceReader(const FMRHeader& header, const QString& targetFMR)
        : header_(header), series_(header_, targetFMR) {}
    /// Why a slice can't be read; empty when it can.
    [[nodiscard]] QString fault(int slice) const;

    FMRHeader header_;
    SavedSeries series_;
    std::unique_ptr<QFile> common_; ///< the file of format 2, once it is open
};
