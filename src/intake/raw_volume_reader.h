// Base of the readers of files whose samples are at a known offset.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "intake/file_volume_reader.h"

#include <optional>

class RawVolumeReader : public FileVolumeReader {
protected:
    /// A file to wait for, and what to read of it. `part` has a length.
    struct RawFile {
        ExpectedFile expected;
        FilePart part;
        int settleMilliseconds = 10;
        int pollMilliseconds = 100;
        FollowingFiles following = {};
    };
    /// Samples as stored in the file, in the reader's buffer until the next read.
    struct RawImage {
        QString path;
        std::span<uint8_t> samples;
    };

    /// A file of the watch folder whose samples follow a header of fixed size.
    struct HeadedFile {
        QString name;
        bool firstOfRun = false;
        qint64 headerBytes = 0;
        qint64 sampleBytes = 0;
        int settleMilliseconds = 10;
        FollowingFiles following = {};
    };

    using FileVolumeReader::FileVolumeReader;

    /// Waits for the file and reads the whole part. A file that passes the arrival test while the
    /// scanner still writes the part, or keeps it locked, is waited for, all within the time-out of
    /// the settings. Nothing on a time-out, after a message if the file could not be opened.
    [[nodiscard]] std::optional<RawImage> awaitSamples(const RawFile& file);

    /// The same for such a file, with its samples in the byte order of this machine. The first one
    /// of a run determines the watch folder.
    [[nodiscard]] std::optional<RawImage> awaitHeadedFile(const HeadedFile& file);

    /// Swaps the samples if the byte order of the run's files, as the settings state it, is not
    /// that of this machine.
    void toHostOrder(std::span<uint8_t> samples) const;
};
