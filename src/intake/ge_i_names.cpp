// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/ge_i_names.h"

#include "base/paths.h"
#include "intake/dicom_names.h"

#include <algorithm>

namespace {

constexpr int numberWidth = 3;

} // namespace

QString geIImageName(qint64 image) {
    return "I." + paddedNumber(image, numberWidth);
}

QString geIFileName(const GeINumbers& first, qint64 index) {
    constexpr qint64 lastImage = 999;
    constexpr int seriesStep = 20;
    qint64 series = first.seriesNr;
    qint64 image = first.firstImageNr + index;
    if (image > lastImage) {
        // Files since the first change of folder; a first number above 999 changes it as well.
        const qint64 behind = std::min(image - lastImage - 1, index);
        series += seriesStep * (1 + behind / lastImage);
        image = 1 + behind % lastImage;
    }
    return paddedNumber(series, numberWidth) + '/' + geIImageName(image);
}

GeIFileList geIFileList(const QString& watchFolder, const GeINumbers& first, qint64 count) {
    constexpr qsizetype largestText = qsizetype(64) << 20;
    GeIFileList list;
    while (list.nrOfNames < count) {
        const QString name = paths::join(watchFolder, geIFileName(first, list.nrOfNames));
        const QByteArray line = name.toUtf8() + '\n';
        if (list.text.size() + line.size() > largestText)
            break;
        list.text += line;
        ++list.nrOfNames;
    }
    return list;
}
