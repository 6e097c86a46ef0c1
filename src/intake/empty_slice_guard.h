// Waits for slices that a volume's files hold as zeros at first.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "intake/volume_reader.h"

/// Stands around the reader of any data type. A copy to a share can be made at its full size and be
/// filled slice by slice: a slice of zeros that was not so in the volume before is no measurement.
/// Such a volume is read again for up to one TR, within the time-out of the settings. Then it is
/// taken as it is, and the operator is told, a few times in a run.
///
/// The volume before is the one that was read before. The first volume of a run has none: each of
/// its slices is waited for, but empty ones may belong to the scan, so that only a volume that is
/// zero throughout is told. A volume without such slices costs one look at its first
/// samples.
class EmptySliceGuard : public VolumeReader {
public:
    EmptySliceGuard(const IntakeContext& context, std::unique_ptr<VolumeReader> reader)
        : context_(context), reader_(std::move(reader)) {}

    [[nodiscard]] bool prepare() override { return reader_->prepare(); }
    [[nodiscard]] bool readFirstVolume() override { return readFilled(firstVolume); }
    [[nodiscard]] bool readVolume(int volume) override { return readFilled(volume); }
    [[nodiscard]] bool readHeaders() override { return reader_->readHeaders(); }

private:
    static constexpr int firstVolume = -1;

    [[nodiscard]] bool readFilled(int volume);
    [[nodiscard]] bool readOnce(int volume);
    /// The first slice, from 0, that is empty and should not be; -1 where there is none.
    [[nodiscard]] int lateSlice(int volume);
    void tell(int volume, int slice);

    IntakeContext context_;
    std::unique_ptr<VolumeReader> reader_;
    // One entry for each slice: whether it is empty in the volume at hand, and was before.
    std::vector<char> isEmpty_;
    std::vector<char> wasEmpty_;
    int nrOfWarnings_ = 0;
};
