// ANALYZE 7.5 files: an image and a header for each volume.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "scanner_files.h"

/// Types PHILIPS_ANALYZE_DRIN and ANALYZE_NW. Rows are stored so that the image transformation of
/// the settings restores the measured volume.
class AnalyzeFormat : public ScannerFormat {
public:
    using ScannerFormat::ScannerFormat;

    [[nodiscard]] QStringList fileNames(int volume) const override;
    [[nodiscard]] std::vector<ScannerFile> files(int volume,
                                                 std::span<const uint16_t> samples) const override;
    void addTypeBlock(SettingsLines& lines) const override;

private:
    [[nodiscard]] QString prefix() const;
    [[nodiscard]] QByteArray header() const;
};
