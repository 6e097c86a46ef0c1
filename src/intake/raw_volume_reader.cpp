// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/raw_volume_reader.h"

#include "intake/pixel_data.h"

std::optional<RawVolumeReader::RawImage> RawVolumeReader::awaitSamples(const RawFile& file) {
    const StopWatch watch = newWatch();
    const FileWaitScope told = tellWait(file.expected);
    const QString path = awaitPath(file.expected,
                                   {.timeOutMilliseconds = timeOutMilliseconds(),
                                    .pollMilliseconds = file.pollMilliseconds,
                                    .settleMilliseconds = file.settleMilliseconds},
                                   file.following);
    if (path.isEmpty())
        return std::nullopt;
    const qint64 wholeBytes = file.part.offset + file.part.length;
    for (bool first = true; first || waitAgain(watch, path, file.pollMilliseconds); first = false) {
        // One that grows is not read each time that it has grown.
        const auto stamp = fileStamp(path);
        if (!first && stamp && stamp->size < wholeBytes)
            continue;
        if (!readPart(path, file.part, watch, "ERROR: Could not allocate memory to read file:"))
            return std::nullopt;
        if (bytes().size() == size_t(file.part.length))
            return RawImage{path, bytes()};
    }
    return std::nullopt;
}

std::optional<RawVolumeReader::RawImage> RawVolumeReader::awaitHeadedFile(const HeadedFile& file) {
    const qint64 fileBytes = file.headerBytes + file.sampleBytes;
    const auto image = awaitSamples(
        {.expected = file.firstOfRun ? expectedFirstFile(file.name, fileBytes)
                                     : ExpectedFile{{watchedPath(file.name)}, fileBytes, true},
         .part = {.offset = file.headerBytes, .length = file.sampleBytes},
         .settleMilliseconds = file.settleMilliseconds,
         .following = file.following});
    if (!image)
        return std::nullopt;
    if (file.firstOfRun)
        takeFirstFile(image->path);
    toHostOrder(image->samples);
    return image;
}

void RawVolumeReader::toHostOrder(std::span<uint8_t> samples) const {
    ::toHostOrder(samples, state().rawDataByteOrder);
}
