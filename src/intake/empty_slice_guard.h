// Waiting for slices that are still zero when their file arrives.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "intake/volume_reader.h"

/// Wraps the reader of any data type. A copy on a share can be created at its full size and filled
/// slice by slice: a slice of zeros that was not zero in the previous volume has not arrived. Such
/// a volume is read again for up to one TR, within the time-out of the settings. Then it is
/// accepted, with a warning, at most a few times per run.
///
/// The previous volume is the one read before. In the first volume of a run every empty slice is
/// waited for, but empty slices may belong to the scan, so only a volume of zeros gives a warning.
/// Of slices that are not empty only the first samples are tested.
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
    void warn(int volume, int slice);

    IntakeContext context_;
    std::unique_ptr<VolumeReader> reader_;
    // One entry for each slice: whether it is empty in this volume, and was in the previous one.
    std::vector<char> isEmpty_;
    std::vector<char> wasEmpty_;
    int nrOfWarnings_ = 0;
};
