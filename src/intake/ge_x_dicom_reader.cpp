// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/ge_x_dicom_reader.h"

QStringList GeXDicomReader::namesOf(qint64 base, const std::vector<int>& missing) const {
    const qint64 count = base + missing.front();
    return {sliceFileName(count + settings().GESeriesNr, count)};
}
