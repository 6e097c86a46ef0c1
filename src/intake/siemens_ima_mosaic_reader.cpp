// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/siemens_ima_mosaic_reader.h"

#include "intake/siemens_ima_names.h"

QString SiemensImaMosaicReader::nameOf(qint64 study, qint64 image) const {
    return imaFileName(settings(), study, image);
}

bool SiemensImaMosaicReader::readHeaders() {
    readSiemensIMAHeader(watchedPath(firstImaFileName(settings())), state().rawDataByteOrder,
                         project());
    return true;
}
