// Data type "GE_X_DICOM": the numbers of the settings tell the name of every slice's file.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "intake/ge_dicom_reader.h"

class GeXDicomReader : public GeDicomReader {
public:
    explicit GeXDicomReader(const IntakeContext& context) : GeDicomReader(context) {}
    /// Voxel size and field of view; these files are not asked for positions.
    [[nodiscard]] bool readHeaders() override { return readSizes(); }

private:
    [[nodiscard]] qint64 firstCount() const override { return settings().GEFirstImageNr; }
    [[nodiscard]] QStringList namesOf(qint64 base, const std::vector<int>& missing) const override;
};
