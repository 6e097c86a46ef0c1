// GE DICOM files, a slice each, whose names have a running number and the number of the image.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "scanner_files.h"

/// Types GE_X_DICOM and GE_HDXT_DICOM. The running number of the second counts the files in the
/// order of their writing, so that slices of a volume can come in any order.
class GeDicomFormat : public ScannerFormat {
public:
    using ScannerFormat::ScannerFormat;

    [[nodiscard]] QStringList fileNames(int volume) const override;
    [[nodiscard]] std::vector<ScannerFile> files(int volume,
                                                 std::span<const uint16_t> samples) const override;
    [[nodiscard]] bool writesSlices() const override { return true; }
    [[nodiscard]] bool isBigEndian() const override;
    void addTypeBlock(SettingsLines& lines) const override;

private:
    /// Slices in the order of their writing.
    [[nodiscard]] std::vector<int> sliceOrder(int volume) const;
};
