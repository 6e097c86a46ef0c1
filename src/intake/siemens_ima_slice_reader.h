// Data type "SIEMENS_IMA" without mosaic: one ".ima" file for each slice.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "intake/raw_volume_reader.h"

class SiemensImaSliceReader : public RawVolumeReader {
public:
    explicit SiemensImaSliceReader(const IntakeContext& context) : RawVolumeReader(context) {}
    [[nodiscard]] bool readFirstVolume() override;
    [[nodiscard]] bool readVolume(int volume) override;
    /// Geometry from the first file.
    [[nodiscard]] bool readHeaders() override;

private:
    [[nodiscard]] QString fileName(Stage stage, int volume, int slice) const;
    [[nodiscard]] bool readSlices(Stage stage, int volume);
};
