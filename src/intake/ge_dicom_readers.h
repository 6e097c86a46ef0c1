// Readers of the GE data types with one DICOM file for each slice, "i%1.MRDC.%2".
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "intake/dicom_volume_reader.h"
#include "intake/slice_geometry.h"

#include <vector>

/// Base of both. The samples are the last bytes of a file. Their byte order is that of the pixel
/// key in the first volume, and that of the header of the run's first file in the loop.
class GeDicomReader : public DicomVolumeReader {
public:
    [[nodiscard]] bool readFirstVolume() override;
    [[nodiscard]] bool readVolume(int volume) override;

protected:
    explicit GeDicomReader(const IntakeContext& context)
        : DicomVolumeReader(context, ImageKind::singleSlice()) {}

    /// Number after the last "." of the first file's name.
    [[nodiscard]] virtual qint64 firstCount() const = 0;
    /// Names that the file may have that comes next, or `step` files later: the i-th of those of
    /// the next one would hold slice missing[i], counted from 0. `base` is the second number of the
    /// volume's first slice. `step` is less than the number of missing slices.
    [[nodiscard]] virtual QStringList namesOf(qint64 base, const std::vector<int>& missing,
                                              int step) const = 0;

    [[nodiscard]] QString sliceFileName(qint64 number, qint64 count) const;
    /// Reads sizes and field of view from the first slice. False after a message when the file
    /// can't be read or its matrix is not that of the settings.
    [[nodiscard]] bool readSizes();
    /// Last file of the first volume, once that has been read.
    [[nodiscard]] const QString& lastSliceFile() const { return lastSliceFile_; }

private:
    [[nodiscard]] bool readSlices(Stage stage, int volume, qint64 base);
    void remember(const QString& path, int slice);

    QString firstSliceFile_;
    QString lastSliceFile_;
};

/// Data type "GE_HDXT_DICOM": slices arrive in any order, in the series folder of an exam.
class GeHdxtDicomReader : public GeDicomReader {
public:
    explicit GeHdxtDicomReader(const IntakeContext& context) : GeDicomReader(context) {}
    /// Determines the watch folder: a series folder, whose name begins with "s", or the highest
    /// numbered one of an exam folder, whose name begins with "e". An exam without series stays the
    /// watch folder, and the wait for the first file times out. False after a message for any
    /// other.
    [[nodiscard]] bool prepare() override;
    /// Voxel size, field of view in whole millimetres, and the centres of first and last slice.
    [[nodiscard]] bool readHeaders() override;

private:
    [[nodiscard]] qint64 firstCount() const override { return 1; }
    [[nodiscard]] QStringList namesOf(qint64 base, const std::vector<int>& missing,
                                      int step) const override;
    [[nodiscard]] bool takeCorner(SliceEnd which);
    [[nodiscard]] bool takeDirections();

    qint64 gePerSeriesOffset_ = 0; ///< number in the name of the series folder
};

/// Data type "GE_X_DICOM": the settings give the name of every file.
class GeXDicomReader : public GeDicomReader {
public:
    explicit GeXDicomReader(const IntakeContext& context) : GeDicomReader(context) {}
    /// Voxel size and field of view; positions are not read.
    [[nodiscard]] bool readHeaders() override { return readSizes(); }

private:
    [[nodiscard]] qint64 firstCount() const override { return settings().GEFirstImageNr; }
    [[nodiscard]] QStringList namesOf(qint64 base, const std::vector<int>& missing,
                                      int step) const override;
};
