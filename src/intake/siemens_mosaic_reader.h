// Data type "SIEMENS_DICOM_MOSAIC": one DICOM file for each volume, its slices as tiles.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "intake/dicom_volume_reader.h"

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
