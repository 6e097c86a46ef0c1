// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/siemens_pixel_data_reader.h"

#include "intake/dicom_names.h"

QString SiemensPixelDataReader::nameOf(qint64 /*study*/, qint64 image) const {
    return settings().philipsFilePrefix + paddedNumber(image, 3);
}
