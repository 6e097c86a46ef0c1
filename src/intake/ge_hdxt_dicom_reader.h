// Data type "GE_HDXT_DICOM": slices come in any order, into the series folder of an exam.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "intake/ge_dicom_reader.h"
#include "intake/slice_geometry.h"

class GeHdxtDicomReader : public GeDicomReader {
public:
    explicit GeHdxtDicomReader(const IntakeContext& context) : GeDicomReader(context) {}
    /// Settles the watch folder: a series folder, whose name begins with "s", or the highest
    /// numbered one of an exam folder, whose name begins with "e". An exam without series stays the
    /// watch folder: the wait for the first file will tell. False after a message for any other.
    [[nodiscard]] bool prepare() override;
    /// Voxel size, field of view in whole millimetres, and the centres of first and last slice.
    [[nodiscard]] bool readHeaders() override;

private:
    [[nodiscard]] qint64 firstCount() const override { return 1; }
    [[nodiscard]] QStringList namesOf(qint64 base, const std::vector<int>& missing) const override;
    [[nodiscard]] bool takeCorner(SliceEnd which);
    [[nodiscard]] bool takeDirections();

    qint64 gePerSeriesOffset_ = 0; ///< number in the name of the series folder
};
