// Base of all readers of files: the run, waiting, and the target in the project.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "intake/arrival.h"
#include "intake/file_bytes.h"
#include "intake/volume_reader.h"

/// Keeps the file buffer from volume to volume, and nothing else: names are formed anew each time.
class FileVolumeReader : public VolumeReader {
protected:
    /// What is read: the first volume, while a run is prepared, or a volume of the loop.
    enum class Stage { FirstVolume, Loop };

    explicit FileVolumeReader(const IntakeContext& context)
        : context_(context), arrival_(context.pump) {}

    [[nodiscard]] RunSettings& settings() { return context_.settings; }
    [[nodiscard]] const RunSettings& settings() const { return context_.settings; }
    [[nodiscard]] FMRProject& project() { return context_.project; }
    [[nodiscard]] const FMRProject& project() const { return context_.project; }
    [[nodiscard]] IntakeState& state() { return context_.state; }
    [[nodiscard]] const IntakeState& state() const { return context_.state; }
    [[nodiscard]] EventPump& pump() { return context_.pump; }
    [[nodiscard]] StopWatch newWatch() const { return StopWatch(context_.pump); }

    /// How long a file is waited for: the time-out of the settings, or less where a volume is read
    /// again.
    [[nodiscard]] int timeOutMilliseconds() const;
    /// Path of a file in the watched folder.
    [[nodiscard]] QString watchedPath(const QString& name) const;
    /// The index of an analysed volume among the measured ones.
    [[nodiscard]] qint64 measuredVolume(int volume) const {
        return qint64(volume) + settings().NrOfVolumesToSkip;
    }

    /// The first file of a run. With a list of folders instead of a watch folder it may be in any
    /// of them; the size must then match exactly, so that a file of another run is ignored.
    [[nodiscard]] ExpectedFile expectedFirstFile(const QString& name, qint64 size) const;
    /// Makes the folder of the first file the watch folder and stores the file's name in the
    /// project.
    void takeFirstFile(const QString& path);

    /// Tells the display, as long as the result lives, that this file is waited for: until it has
    /// come, can be opened and is whole.
    [[nodiscard]] FileWaitScope tellWait(const ExpectedFile& expected);
    /// ArrivalWatch::await(); keeps when the file was noticed.
    [[nodiscard]] QString awaitPath(const ExpectedFile& expected, const WaitTimes& times,
                                    const FollowingFiles& following);
    /// Waits for the next poll, or until something happens in the folder of the file. False,
    /// without waiting, if `watch` has passed the time-out of a file, or when the pump has given up
    /// waiting.
    [[nodiscard]] bool waitAgain(const StopWatch& watch, const QString& fileName,
                                 int pollMilliseconds = 100);
    /// Reads the whole file, or `length` bytes at `offset`, into the buffer; one that can't be
    /// opened is tried again until `watch` has passed the time-out. False after a message; for a
    /// file too large for memory it is `memoryMessage`, the file's name and " !".
    [[nodiscard]] bool readWhole(const QString& fileName, const StopWatch& watch,
                                 const QString& memoryMessage);
    [[nodiscard]] bool readPart(const QString& fileName, const FilePart& part,
                                const StopWatch& watch, const QString& memoryMessage);
    /// Reads the whole file if that is possible now; shows nothing.
    [[nodiscard]] bool readNow(const QString& fileName) {
        return file_.read(fileName) == FileBytes::Result::Done;
    }
    /// Reserves memory for reads of up to this many bytes; false when there is not enough.
    [[nodiscard]] bool reserveBuffer(qint64 length) { return file_.reserve(length); }
    /// What was read last.
    [[nodiscard]] std::span<uint8_t> bytes() { return file_.bytes(); }

    /// The volumes to fill, to be looked up again after each wait, which processes events. Empty
    /// when the index is out of range or the volume does not have the size of the run.
    [[nodiscard]] std::span<int16_t> firstVolume();
    [[nodiscard]] std::span<int16_t> analysedVolume(int volume);
    /// The one of the two that the stage fills; `volume` is used only in the loop.
    [[nodiscard]] std::span<int16_t> targetVolume(Stage stage, int volume) {
        return stage == Stage::FirstVolume ? firstVolume() : analysedVolume(volume);
    }
    /// One slice of it; empty if the volume is, or has no such slice.
    [[nodiscard]] std::span<int16_t> targetSlice(Stage stage, int volume, int slice);
    /// Copies the samples. False, with nothing copied, when the sizes differ.
    [[nodiscard]] static bool store(std::span<const uint8_t> samples, std::span<int16_t> target);

    /// Shows the text as a warning; false, for the caller to return.
    static bool failWith(const QString& text);

private:
    [[nodiscard]] std::span<int16_t> ofRightSize(std::span<int16_t> volume) const;

    IntakeContext context_;
    ArrivalWatch arrival_;
    FileBytes file_;
};
