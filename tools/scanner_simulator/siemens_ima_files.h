// Siemens IMA files, single slices and mosaics, and mosaics without header.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "scanner_files.h"

/// Types SIEMENS_IMA and SIEMENS_IMA_MOSAIC: a header of 6144 bytes before the samples.
class SiemensImaFormat : public ScannerFormat {
public:
    using ScannerFormat::ScannerFormat;

    [[nodiscard]] QStringList fileNames(int volume) const override;
    [[nodiscard]] std::vector<ScannerFile> files(int volume,
                                                 std::span<const uint16_t> samples) const override;
    [[nodiscard]] bool writesSlices() const override { return !isMosaic(); }
    void addTypeBlock(SettingsLines& lines) const override;
    void addMosaicEntries(SettingsLines& lines) const override;

private:
    [[nodiscard]] bool isMosaic() const { return options().type == ScannerType::SiemensImaMosaic; }
    [[nodiscard]] int firstStudy() const;
    [[nodiscard]] int study(int volume) const;
    [[nodiscard]] QByteArray file(std::span<const uint16_t> pixels) const;
};

/// Type SIEMENSPIXELDATA: samples only, tiles from the last slice to the first.
class SiemensPixelDataFormat : public ScannerFormat {
public:
    using ScannerFormat::ScannerFormat;

    [[nodiscard]] QStringList fileNames(int volume) const override;
    [[nodiscard]] std::vector<ScannerFile> files(int volume,
                                                 std::span<const uint16_t> samples) const override;
    void addTypeBlock(SettingsLines& lines) const override;
    void addMosaicEntries(SettingsLines& lines) const override;

private:
    [[nodiscard]] int firstImage() const;
};
