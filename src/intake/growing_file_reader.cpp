// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/growing_file_reader.h"

#include "base/paths.h"
#include "intake/image_transformation.h"

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

// The volume is taken up as soon as its first slice is there; the rest is waited for behind that.
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
