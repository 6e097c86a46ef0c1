// What the readers of files share whose samples stand at a known place.
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
    };
    /// Samples as they stand in the file, in the reader's buffer until the next read.
    struct RawImage {
        QString path;
        std::span<uint8_t> samples;
    };

    /// A file of the watched folder whose samples stand behind a header of fixed size.
    struct HeadedFile {
        QString name;
        bool firstOfRun = false;
        qint64 headerBytes = 0;
        qint64 sampleBytes = 0;
        int settleMilliseconds = 10;
    };

    using FileVolumeReader::FileVolumeReader;

    /// Waits for the file and reads the whole part. A file that passes the arrival test while the
    /// scanner still writes the part, or keeps it locked, is waited for; all of it has the time-out
    /// of the settings. Nothing when that has passed, after a message if the file could not be
    /// opened.
    [[nodiscard]] std::optional<RawImage> awaitSamples(const RawFile& file);

    /// The same for such a file; its samples come in the byte order of this machine. The first one
    /// of a run settles the watched folder.
    [[nodiscard]] std::optional<RawImage> awaitHeadedFile(const HeadedFile& file);

    /// Exchanges the bytes of all samples where the run's files, as the settings state it, have
    /// another byte order than this machine.
    void toHostOrder(std::span<uint8_t> samples) const;
};
