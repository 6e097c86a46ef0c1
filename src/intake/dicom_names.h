// Names of the DICOM files of a run.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/settings/run_settings.h"

/// With leading zeros up to `width` characters; a longer number is kept whole, a width of -1 adds
/// nothing.
[[nodiscard]] inline QString paddedNumber(qint64 number, int width) {
    return QString::number(number).rightJustified(width, '0');
}

/// "i5.MRDC.1": number and count as GE scanners write them, without leading zeros.
[[nodiscard]] inline QString geDicomFileName(qint64 number, qint64 count) {
    return QString("i%1.MRDC.%2").arg(number).arg(count);
}

/// Prefix, delimiter, volume number, delimiter, image number, ".", extension.
[[nodiscard]] inline QString dicomFileName(const QString& prefix, qint64 volumeNumber,
                                           qint64 imageNumber, const RunSettings& settings) {
    const int width = settings.dicomImageNumberWidth;
    return prefix + settings.DicomNameDelimiter + paddedNumber(volumeNumber, width) +
           settings.DicomNameDelimiter + paddedNumber(imageNumber, width) + '.' +
           settings.DicomNameExtension;
}
