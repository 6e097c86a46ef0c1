// Data type "GE_STANFORD": one raw file for each volume, beside the P file that names them.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "intake/raw_volume_reader.h"

class GeStanfordReader : public RawVolumeReader {
public:
    explicit GeStanfordReader(const IntakeContext& context) : RawVolumeReader(context) {}
    /// False, after a message, when the name of the P file has no "P": no volume has a name then.
    [[nodiscard]] bool prepare() override;
    [[nodiscard]] bool readFirstVolume() override;
    [[nodiscard]] bool readVolume(int volume) override;
    /// Voxel size and field of view. A header that can't be read doesn't stop a run.
    [[nodiscard]] bool readHeaders() override;

private:
    [[nodiscard]] QString volumePath(qint64 measured) const;
    [[nodiscard]] bool readSlices(Stage stage, int volume, const QString& path);
};
