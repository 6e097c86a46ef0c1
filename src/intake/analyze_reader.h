// Data types "PHILIPS_ANALYZE_DRIN" and "ANALYZE_NW": one ".img" file for each volume.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "intake/raw_volume_reader.h"

class AnalyzeReader : public RawVolumeReader {
public:
    explicit AnalyzeReader(const IntakeContext& context) : RawVolumeReader(context) {}
    [[nodiscard]] bool readFirstVolume() override;
    [[nodiscard]] bool readVolume(int volume) override;

private:
    [[nodiscard]] QString filePath(qint64 measured) const;
    [[nodiscard]] bool readImage(Stage stage, int volume);
};
