// Readers of raw GE files.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "intake/raw_volume_reader.h"

/// Data type "GE_I": one raw file for each slice, in folders of 999 images.
class GeIReader : public RawVolumeReader {
public:
    explicit GeIReader(const IntakeContext& context) : RawVolumeReader(context) {}
    /// Writes the list of expected files into the target folder, if possible.
    [[nodiscard]] bool prepare() override;
    [[nodiscard]] bool readFirstVolume() override;
    [[nodiscard]] bool readVolume(int volume) override;
    /// Voxel size and field of view. A header that can't be read doesn't stop a run.
    [[nodiscard]] bool readHeaders() override;

private:
    [[nodiscard]] QString expectedPath(qint64 index) const;
    [[nodiscard]] bool readSlices(Stage stage, int volume, qint64 firstIndex);
};

/// Data type "GE_STANFORD": one raw file for each volume, beside the P file that names them.
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
