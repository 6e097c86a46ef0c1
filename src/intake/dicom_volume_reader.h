// Base of the readers of DICOM files, which find the samples by the pixel key.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "intake/file_volume_reader.h"
#include "intake/pixel_data.h"

/// How the files of one data type are read.
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

    /// Waits for one of the names and reads its image of at least `nrOfSamples` samples. The
    /// scanner may still be writing the file when it passes the arrival test, or keep it locked:
    /// both are waited for, all within the time-out of the settings. Nothing on a time-out, after a
    /// message if a file had arrived, or after a message for a damaged file. Files of the first
    /// volume are also checked for being supported.
    [[nodiscard]] std::optional<Image> awaitImage(const ExpectedFile& expected, Stage stage,
                                                  size_t nrOfSamples,
                                                  const FollowingFiles& following = {});
    /// Reads a file that has arrived, as FileVolumeReader does, with this kind's message.
    [[nodiscard]] bool readWhole(const QString& fileName, const StopWatch& watch);
    /// False, after a message, for a file that is not supported.
    [[nodiscard]] bool acceptsFile(const QString& fileName);
    /// Copies the first samples of a file of one slice; false when `target` is empty, as it is when
    /// the volume was freed during a wait.
    [[nodiscard]] bool takeSlice(const Image& image, Stage stage, std::span<int16_t> target) const;

    /// Reads the header of a file that has arrived into the shared record. False after a message.
    [[nodiscard]] bool readHeader(const QString& fileName);
    /// Copies pixel sizes, thickness and gap from the shared record, and computes the field of view
    /// of the matrix. Sizes missing from the header stay; `fileName` is for the message about
    /// invalid ones.
    void takeSizes(const QString& fileName);
    /// Shows that the header does not match the expected columns and rows; returns false.
    [[nodiscard]] bool failForDimensions(int columns, int rows) const;

private:
    [[nodiscard]] std::optional<Image> readImage(const QString& fileName, const StopWatch& watch,
                                                 Stage stage, size_t nrOfSamples);
    void explainLateFile(const QStringList& names);

    ImageKind kind_;
};
