// What all readers of files share: the wait, the read, the place in the project.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "intake/arrival.h"
#include "intake/file_bytes.h"
#include "intake/pixel_data.h"
#include "intake/volume_reader.h"

/// Keeps the file buffer from volume to volume, and nothing else: names are formed anew each time.
class FileVolumeReader : public VolumeReader {
protected:
    enum class Stage { FirstVolume, Loop };

    explicit FileVolumeReader(const IntakeContext& context) : context_(context) {}

    [[nodiscard]] const RunSettings& settings() const { return context_.settings; }
    [[nodiscard]] FMRProject& project() { return context_.project; }
    [[nodiscard]] IntakeState& state() { return context_.state; }
    [[nodiscard]] const IntakeState& state() const { return context_.state; }

    /// Path of a file in the watched folder.
    [[nodiscard]] QString watchedPath(const QString& name) const;
    /// Counts measured volumes, from an analysed one.
    [[nodiscard]] qint64 measuredVolume(int volume) const {
        return qint64(volume) + settings().NrOfVolumesToSkip;
    }
    /// Waits with the time-out of the settings; empty when it has passed.
    [[nodiscard]] QString await(const ExpectedFile& expected, int settleMilliseconds);
    /// Reads the whole file into the buffer. False after a message; `memoryMessage` is followed by
    /// the file's name and " !".
    [[nodiscard]] bool readWhole(const QString& fileName, const QString& memoryMessage);
    /// The content of the file that was read last.
    [[nodiscard]] std::span<uint8_t> bytes() { return file_.bytes(); }

    /// The volumes to fill, looked up anew behind each wait. Empty when the number is out of range
    /// or the volume has not the size of the settings.
    [[nodiscard]] std::span<int16_t> firstVolume();
    [[nodiscard]] std::span<int16_t> analysedVolume(int volume);

    /// Shows the text as a warning; false, for the caller to return.
    static bool failWith(const QString& text);
    /// False, after a message, for a file that is known to be unreadable as it stands.
    [[nodiscard]] bool acceptsFile(const QString& fileName);
    /// Says why one of these files was never taken, where it is there but of no use: a compressed
    /// file stays below the expected size for good.
    void explainLateFile(const QStringList& names, const QString& memoryMessage);
    /// Finds the samples in the buffer. Nothing after a message; `missingMessage` is the one for a
    /// file without pixel key.
    [[nodiscard]] std::optional<PixelData> pixelData(const QString& fileName, PixelKeySearch search,
                                                     const QString& missingMessage);
    /// False, after a message, when less than `count` samples are there.
    [[nodiscard]] static bool holdsSamples(std::span<const uint8_t> samples, size_t count,
                                           const QString& fileName);

private:
    [[nodiscard]] std::span<int16_t> ofRightSize(Volume& volume) const;

    IntakeContext context_;
    FileBytes file_;
};
