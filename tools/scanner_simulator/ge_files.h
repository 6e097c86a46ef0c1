// GE files: slices and volumes in GE's own formats, and DICOM slices.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "scanner_files.h"

/// Type GE_I: a header of 7904 bytes before each slice; 999 images to a folder.
class GeIFormat : public ScannerFormat {
public:
    using ScannerFormat::ScannerFormat;

    [[nodiscard]] QStringList fileNames(int volume) const override;
    [[nodiscard]] std::vector<ScannerFile> files(int volume,
                                                 std::span<const uint16_t> samples) const override;
    [[nodiscard]] bool writesSlices() const override { return true; }
    void addTypeBlock(SettingsLines& lines) const override;
};

/// Type GE_STANFORD: slices of a volume from the last to the first, big endian, and a text file
/// with the geometry, which the scanner writes before the first volume.
class GeStanfordFormat : public ScannerFormat {
public:
    using ScannerFormat::ScannerFormat;

    [[nodiscard]] QStringList fileNames(int volume) const override;
    [[nodiscard]] std::vector<ScannerFile> files(int volume,
                                                 std::span<const uint16_t> samples) const override;
    void addTypeBlock(SettingsLines& lines) const override;

private:
    /// Prefix of the names of all files of the run.
    [[nodiscard]] QString pFile() const;
    [[nodiscard]] QString headerName() const;
    [[nodiscard]] QByteArray headerText() const;
};

/// Types GE_X_DICOM and GE_HDXT_DICOM. DICOM, a slice per file. The running number of the second
/// type counts the files in the order of writing, so that slices of a volume can come in any order.
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
    /// Slices in the order of writing.
    [[nodiscard]] std::vector<int> sliceOrder(int volume) const;
};
