// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/ge_i_header.h"

#include "base/byte_reader.h"
#include "base/messages.h"
#include "intake/file_bytes.h"

std::optional<HeaderSizes> parseGEIHeader(std::span<const uint8_t> bytes) {
    constexpr size_t startOffset = 148;
    ByteReader reader(bytes, ByteOrder::Big);
    reader.seek(startOffset);
    const size_t start = reader.u32();
    const auto floatAt = [&](size_t offset) {
        reader.seek(start + offset);
        return reader.f32();
    };
    const HeaderSizes sizes{.pixelSizeX = statedLength(floatAt(54)),
                            .pixelSizeY = statedLength(floatAt(50)),
                            .sliceThickness = floatAt(26),
                            .sliceGap = floatAt(116),
                            .fieldOfViewX = statedLength(floatAt(38)),
                            .fieldOfViewY = statedLength(floatAt(34))};
    return reader.failed() ? std::nullopt : std::optional(sizes);
}

void readGEIHeader(const QString& fileName, FMRProject& project) {
    // Headers stand before the samples; no file has this much before its image header.
    constexpr qint64 headerLimit = qint64(1) << 20;
    FileBytes file;
    if (file.read(fileName, {.length = headerLimit}) != FileBytes::Result::Done) {
        showWarning("ERROR: Can not open GE_I file !");
        return;
    }
    if (const auto sizes = parseGEIHeader(file.bytes()))
        takeHeaderSizes(*sizes, fileName, project);
    else
        showWarning(QString("ERROR: GE_I file \"%1\" holds no image header; the run goes on "
                            "without its voxel size !")
                        .arg(fileName));
}
