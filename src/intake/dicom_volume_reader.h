// What the readers of DICOM files share whose pixels are found by their key.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "intake/file_volume_reader.h"
#include "intake/pixel_data.h"

/// What tells the files of one data type from those of another.
struct ImageKind {
    PixelKeySearch search = PixelKeySearch::First;
    int settleMilliseconds = 10;
    QString memoryMessage;     ///< the file's name and " !" follow
    QString missingKeyMessage; ///< of a file without pixel key; "%1" stands for its name

    /// Files of one slice each.
    [[nodiscard]] static ImageKind singleSlice();
};

class DicomVolumeReader : public FileVolumeReader {
protected:
    /// The samples of a file, in the reader's buffer until the next read.
    struct Image {
        QString path;
        std::span<uint8_t> samples;
        ByteOrder byteOrder = ByteOrder::Little;
    };

    DicomVolumeReader(const IntakeContext& context, ImageKind kind)
        : FileVolumeReader(context), kind_(std::move(kind)) {}

    /// Waits for one of the names and reads its image of at least `nrOfSamples` samples. A scanner
    /// may still be writing the file when it passes the arrival test, or keep it locked: both are
    /// waited out. All of it has the time-out of the settings. Nothing when that has passed, after
    /// a message if a file had arrived, or after the message of a file that no waiting mends. The
    /// first volume is also held against the kinds of files that can't be read.
    [[nodiscard]] std::optional<Image> awaitImage(const ExpectedFile& expected, Stage stage,
                                                  size_t nrOfSamples);
    /// Reads a file that has arrived, as FileVolumeReader does, with this kind's message.
    [[nodiscard]] bool readWhole(const QString& fileName, const StopWatch& watch);
    /// False, after a message, for a file that is known to be unreadable as it stands.
    [[nodiscard]] bool acceptsFile(const QString& fileName);
    /// Copies the first samples of a file of one slice; false when `target` is empty, as it is when
    /// the volume has gone in a wait.
    [[nodiscard]] bool takeSlice(const Image& image, Stage stage, std::span<int16_t> target) const;

    /// Reads the header of a file that has arrived into the shared record. False after a message.
    [[nodiscard]] bool readHeader(const QString& fileName);
    /// Takes pixel sizes, thickness and gap from the shared record, and the field of view of the
    /// matrix. What the header doesn't state stays; `fileName` is for the message of sizes that
    /// can't be.
    void takeSizes(const QString& fileName);
    /// Says that the header disagrees with the columns and rows that are expected; false.
    [[nodiscard]] bool failForDimensions(int columns, int rows) const;

private:
    [[nodiscard]] std::optional<Image> readImage(const QString& fileName, const StopWatch& watch,
                                                 Stage stage, size_t nrOfSamples);
    void explainLateFile(const QStringList& names);

    ImageKind kind_;
};
