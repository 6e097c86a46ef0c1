// Waiting for slices that are still zero when their file arrives.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "intake/volume_reader.h"

/// Wraps the reader of any data type. A copy on a share can be created at its full size and filled
/// slice by slice: a slice of zeros that is not known to be empty in this scan has not arrived.
/// Such a volume is read again for up to one TR, or the time-out of the settings where that is
/// shorter, counted from when it was read first. Then it is accepted, with a warning, at most a few
/// times per run. The same holds where its files have gone meanwhile.
///
/// A slice is known to be empty from the first volume of a run on, or after three volumes in a row
/// were accepted with it: one volume that is filled slowly teaches nothing about the others. A
/// volume of nothing but zeros doesn't count. A slice that holds samples once is not known to be
/// empty any more. In the first volume every empty slice is waited for, but empty slices may belong
/// to the scan, so only a volume of zeros gives a warning. Of slices that are not empty only the
/// first samples are tested.
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
    static constexpr int volumesToLearn = 3;

    [[nodiscard]] bool readFilled(int volume);
    [[nodiscard]] bool readOnce(int volume);
    [[nodiscard]] bool readAgain(int volume, double longestMilliseconds);
    /// The first slice, from 0, that is empty and should not be; -1 where there is none.
    [[nodiscard]] int lateSlice(int volume);
    void learn(int volume);
    [[nodiscard]] bool anyFilled() const;
    void warn(int volume, int slice);

    IntakeContext context_;
    std::unique_ptr<VolumeReader> reader_;
    // One entry for each slice: whether it is empty in this volume, and in how many of the last
    // ones in a row it was, up to volumesToLearn, which says that it is empty in this scan.
    std::vector<char> isEmpty_;
    std::vector<int> volumesEmpty_;
    int nrOfWarnings_ = 0;
};
