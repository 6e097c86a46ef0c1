// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/raw_volume_reader.h"

#include "intake/pixel_data.h"

std::optional<RawVolumeReader::RawImage> RawVolumeReader::awaitSamples(const RawFile& file) {
    const StopWatch watch = newWatch();
    const QString path = awaitFile(file.expected,
                                   {.timeOutMilliseconds = settings().timeOutMilliseconds,
                                    .pollMilliseconds = file.pollMilliseconds,
                                    .settleMilliseconds = file.settleMilliseconds},
                                   pump());
    if (path.isEmpty())
        return std::nullopt;
    do {
        if (!readPart(path, file.part, watch, "ERROR: Could not allocate memory to read file:"))
            return std::nullopt;
        if (bytes().size() == size_t(file.part.length))
            return RawImage{path, bytes()};
    } while (waitsOn(watch, file.pollMilliseconds));
    return std::nullopt;
}

void RawVolumeReader::toHostOrder(std::span<uint8_t> samples) const {
    if (state().rawDataByteOrder != hostByteOrder)
        swapSamples(samples, samples.size() / 2);
}
