// Readers of raw files without a header: one for each volume, and one for the whole run.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "intake/raw_volume_reader.h"

/// Data types "PHILIPS_ANALYZE_DRIN" and "ANALYZE_NW": one ".img" file for each volume.
class AnalyzeReader : public RawVolumeReader {
public:
    explicit AnalyzeReader(const IntakeContext& context) : RawVolumeReader(context) {}
    [[nodiscard]] bool readFirstVolume() override;
    [[nodiscard]] bool readVolume(int volume) override;

private:
    [[nodiscard]] QString filePath(qint64 measured) const;
    [[nodiscard]] bool readImage(Stage stage, int volume);
};

/// Data types "PHILIPS_REC" and "2DSEQ_MPI": one file that grows during the run. Each volume has
/// its slices from the last to the first. Samples are never swapped, whatever byte order the
/// settings state.
class GrowingFileReader : public RawVolumeReader {
public:
    explicit GrowingFileReader(const IntakeContext& context) : RawVolumeReader(context) {}
    [[nodiscard]] bool readFirstVolume() override;
    [[nodiscard]] bool readVolume(int volume) override;
};
