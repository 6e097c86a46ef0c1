// Data type "DICOM": one file for each slice; all sizes come from the settings.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "intake/dicom_volume_reader.h"

class DicomSliceReader : public DicomVolumeReader {
public:
    explicit DicomSliceReader(const IntakeContext& context);
    [[nodiscard]] bool readFirstVolume() override;
    [[nodiscard]] bool readVolume(int volume) override;

private:
    [[nodiscard]] QStringList namesOf(qint64 measured, int slice) const;
    [[nodiscard]] bool readSlices(Stage stage, int volume);
};
