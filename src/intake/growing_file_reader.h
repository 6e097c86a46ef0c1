// Data types "PHILIPS_REC" and "2DSEQ_MPI": one file of raw slices that grows through the run.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "intake/raw_volume_reader.h"

/// Slices stand in the file from the last to the first. Samples are taken as they stand, in the
/// first volume and in all others, whatever the settings say about the byte order.
class GrowingFileReader : public RawVolumeReader {
public:
    explicit GrowingFileReader(const IntakeContext& context) : RawVolumeReader(context) {}
    [[nodiscard]] bool readFirstVolume() override;
    [[nodiscard]] bool readVolume(int volume) override;
};
