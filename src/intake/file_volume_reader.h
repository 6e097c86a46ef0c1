// What all readers of files share: the wait, the read, the place in the project.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "intake/arrival.h"
#include "intake/file_bytes.h"
#include "intake/pixel_data.h"
#include "intake/volume_reader.h"

/// What tells the files of one data type from those of another.
struct ImageKind {
    PixelKeySearch search = PixelKeySearch::First;
    int settleMilliseconds = 10;
    QString memoryMessage;     ///< the file's name and " !" follow
    QString missingKeyMessage; ///< of a file without pixel key; "%1" stands for its name
};

/// Keeps the file buffer from volume to volume, and nothing else: names are formed anew each time.
class FileVolumeReader : public VolumeReader {
protected:
    enum class Stage { FirstVolume, Loop };

    /// The samples of a file, in the reader's buffer until the next read.
    struct Image {
        QString path;
        std::span<uint8_t> samples;
        ByteOrder byteOrder = ByteOrder::Little;
    };

    FileVolumeReader(const IntakeContext& context, ImageKind kind)
        : context_(context), kind_(std::move(kind)) {}

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
    /// Waits for one of the names and reads its image of at least `nrOfSamples` samples. A scanner
    /// may still be writing the file when it passes the arrival test, or keep it locked: both are
    /// waited out. All of it has the time-out of the settings. Nothing when that has passed, after
    /// a message if a file had arrived, or after the message of a file that no waiting mends. The
    /// first volume is also held against the kinds of files that can't be read.
    [[nodiscard]] std::optional<Image> awaitImage(const ExpectedFile& expected, Stage stage,
                                                  size_t nrOfSamples);
    /// Reads the whole file into the buffer; one that can't be opened is tried again until the
    /// time-out has passed on `watch`. False after a message.
    [[nodiscard]] bool readWhole(const QString& fileName, const StopWatch& watch);
    [[nodiscard]] StopWatch newWatch() const { return StopWatch(context_.pump); }
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

private:
    [[nodiscard]] std::span<int16_t> ofRightSize(Volume& volume) const;
    [[nodiscard]] bool waitsOn(const StopWatch& watch);
    [[nodiscard]] std::optional<Image> readImage(const QString& fileName, const StopWatch& watch,
                                                 Stage stage, size_t nrOfSamples);
    void explainLateFile(const QStringList& names);

    IntakeContext context_;
    ImageKind kind_;
    FileBytes file_;
};
