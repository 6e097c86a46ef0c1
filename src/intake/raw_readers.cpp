// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/raw_readers.h"

#include "base/paths.h"
#include "intake/dicom_names.h"
#include "intake/image_transformation.h"

// Exported names have five digits below 1000 and four from there on.
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

bool GrowingFileReader::readFirstVolume() {
    const QString path = settings().documentFirstFileName;
    const int nrOfSlices = project().NrOfSlices;
    const qint64 sliceBytes = qint64(targetSlice(Stage::FirstVolume, 0, 0).size_bytes());
    if (sliceBytes == 0)
        return false;
    for (int slice = 0; slice < nrOfSlices; ++slice) {
        const auto image = awaitSamples(
            {.expected = {{path}, (slice + 1) * sliceBytes, true, /*keepsGrowing*/ true},
             .part = {.offset = slice * sliceBytes, .length = sliceBytes}});
        if (!image ||
            !store(image->samples, targetSlice(Stage::FirstVolume, 0, nrOfSlices - 1 - slice)))
            return false;
    }
    project().FirstDataSourceFile = paths::fileName(path);
    return true;
}

// Waits for the first slice of the volume to settle, then for the rest.
bool GrowingFileReader::readVolume(int volume) {
    const qint64 sliceBytes = qint64(targetSlice(Stage::Loop, volume, 0).size_bytes());
    const qint64 volumeBytes = qint64(analysedVolume(volume).size_bytes());
    const qint64 start = measuredVolume(volume) * volumeBytes;
    if (sliceBytes == 0 || start < 0)
        return false;
    const auto image = awaitSamples({.expected = {{settings().documentFirstFileName},
                                                  start + sliceBytes,
                                                  true,
                                                  /*keepsGrowing*/ true},
                                     .part = {.offset = start, .length = volumeBytes},
                                     .settleMilliseconds = 5,
                                     .pollMilliseconds = 50});
    if (!image || !store(image->samples, analysedVolume(volume)))
        return false;
    reverseParts(analysedVolume(volume), project().NrOfSlices);
    return true;
}
