// Readers of DICOM files named by volume: one file for each slice, and mosaics.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "intake/dicom_volume_reader.h"

/// Data type "DICOM": one file for each slice; all sizes come from the settings.
class DicomSliceReader : public DicomVolumeReader {
public:
    explicit DicomSliceReader(const IntakeContext& context);
    [[nodiscard]] bool readFirstVolume() override;
    [[nodiscard]] bool readVolume(int volume) override;

private:
    [[nodiscard]] QStringList namesOf(qint64 measured, int slice) const;
    [[nodiscard]] bool readSlices(Stage stage, int volume);
};

/// Data type "SIEMENS_DICOM_MOSAIC": one DICOM file for each volume, its slices as tiles.
class SiemensMosaicReader : public DicomVolumeReader {
public:
    explicit SiemensMosaicReader(const IntakeContext& context);
    [[nodiscard]] bool readFirstVolume() override;
    [[nodiscard]] bool readVolume(int volume) override;
    /// Geometry and timing from the first file.
    [[nodiscard]] bool readHeaders() override;

private:
    [[nodiscard]] QString fileName(qint64 measured) const;
    [[nodiscard]] bool layoutIsUsable() const;
    [[nodiscard]] bool takeVolume(const Image& image, Stage stage, std::span<int16_t> volume) const;
    [[nodiscard]] bool headerFitsSettings() const;
};
