// DICOM files named by a prefix and two numbers: mosaics and single slices.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "scanner_files.h"

class DicomFormat : public ScannerFormat {
public:
    explicit DicomFormat(const SimulationOptions& options);
    /// For recorded files with other names; `firstName` is the name of the first.
    DicomFormat(const SimulationOptions& options, FileNaming naming, QString firstName);

    [[nodiscard]] QStringList fileNames(int volume) const override;
    [[nodiscard]] std::vector<ScannerFile> files(int volume,
                                                 std::span<const uint16_t> samples) const override;
    [[nodiscard]] bool writesSlices() const override { return !isMosaic(); }
    [[nodiscard]] bool isBigEndian() const override;
    void addTypeBlock(SettingsLines& lines) const override;
    void addMosaicEntries(SettingsLines& lines) const override;

private:
    [[nodiscard]] bool isMosaic() const { return options().type == ScannerType::SiemensMosaic; }
    [[nodiscard]] QString name(int volume, int file) const;

    FileNaming naming_;
    QString firstName_;
};
