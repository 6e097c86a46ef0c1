// Raw data without header in one file that grows during the run.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "scanner_files.h"

/// Types PHILIPS_REC and 2DSEQ_MPI: slices of each volume from the last to the first.
class GrowingFormat : public ScannerFormat {
public:
    using ScannerFormat::ScannerFormat;

    [[nodiscard]] QStringList fileNames(int volume) const override;
    [[nodiscard]] std::vector<ScannerFile> files(int volume,
                                                 std::span<const uint16_t> samples) const override;
    [[nodiscard]] bool writesOneFile() const override { return true; }
    void addTypeBlock(SettingsLines& lines) const override;
};
