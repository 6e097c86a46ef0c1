// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/analyze_reader.h"

#include "base/paths.h"
#include "intake/dicom_names.h"
#include "intake/image_transformation.h"

// The width drops from five digits to four at 1000: the names that exports have.
QString AnalyzeReader::filePath(qint64 measured) const {
    const qint64 number = settings().philipsFirstNumber + measured;
    return watchedPath(settings().philipsFilePrefix + paddedNumber(number, number < 1000 ? 5 : 4) +
                       ".img");
}

bool AnalyzeReader::readFirstVolume() {
    return readImage(Stage::FirstVolume, 0);
}

bool AnalyzeReader::readVolume(int volume) {
    return readImage(Stage::Loop, volume);
}

bool AnalyzeReader::readImage(Stage stage, int volume) {
    const qint64 bytes = qint64(targetVolume(stage, volume).size_bytes());
    if (bytes == 0)
        return false;
    const QString path = filePath(stage == Stage::FirstVolume ? 0 : measuredVolume(volume));
    const auto image = awaitSamples({.expected = {{path}, bytes, true}, .part = {.length = bytes}});
    if (!image)
        return false;
    if (stage == Stage::FirstVolume)
        project().FirstDataSourceFile = paths::fileName(path);
    toHostOrder(image->samples);
    if (!store(image->samples, targetVolume(stage, volume)))
        return false;
    for (int slice = 0; slice < project().NrOfSlices; ++slice)
        transformSlice(targetSlice(stage, volume, slice), project().ResolutionY,
                       settings().ImageTransformation);
    return true;
}
