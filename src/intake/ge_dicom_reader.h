// What the two GE data types share that have one DICOM file for each slice, "i%1.MRDC.%2".
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "intake/dicom_volume_reader.h"

#include <vector>

/// The samples are the last bytes of a file. They are swapped as the pixel key tells in the first
/// volume, and in the loop as the program has settled on by then, which is what the header of the
/// first file told.
class GeDicomReader : public DicomVolumeReader {
public:
    [[nodiscard]] bool readFirstVolume() override;
    [[nodiscard]] bool readVolume(int volume) override;

protected:
    explicit GeDicomReader(const IntakeContext& context)
        : DicomVolumeReader(context, ImageKind::singleSlice()) {}

    /// Number behind the last "." of the first file's name.
    [[nodiscard]] virtual qint64 firstCount() const = 0;
    /// Names of the files that may come next: the i-th one would hold slice missing[i], counted
    /// from 0. `base` is the second number of the volume's first slice.
    [[nodiscard]] virtual QStringList namesOf(qint64 base,
                                              const std::vector<int>& missing) const = 0;

    [[nodiscard]] QString sliceFileName(qint64 number, qint64 count) const;
    /// Takes sizes and field of view of the first slice. False after a message when the file can't
    /// be read or has not the matrix of the settings.
    [[nodiscard]] bool readSizes();
    /// Files of the first volume, once it has been read.
    [[nodiscard]] const QString& lastSliceFile() const { return lastSliceFile_; }

private:
    [[nodiscard]] bool readSlices(Stage stage, int volume, qint64 base);
    void remember(const QString& path, int slice);

    QString firstSliceFile_;
    QString lastSliceFile_;
};
