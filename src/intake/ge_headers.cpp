// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/ge_headers.h"

#include "base/byte_reader.h"
#include "base/messages.h"
#include "base/text_reading.h"
#include "intake/file_bytes.h"
#include "intake/header_numbers.h"

namespace {

// Reads the next word if it is this one.
bool takeWord(TokenStream& words, const char* wanted) {
    const qsizetype before = words.position();
    if (words.word() == wanted)
        return true;
    words.seek(before);
    return false;
}

// Reads the number after the next word, which is "=" or ":".
void takeNumber(TokenStream& words, std::optional<float>& target) {
    words.word();
    TokenStream number(words.word());
    const double value = number.real();
    if (!number.failed())
        target = limitedFloat(value);
}

} // namespace

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
    // No file has this many bytes before the end of its image header.
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

HeaderSizes parsePFileHeader(const QString& text) {
    HeaderSizes sizes;
    TokenStream words(text);
    while (!words.atEnd()) {
        const QString key = words.word();
        if (key == "FOV")
            takeNumber(words, sizes.fieldOfViewX);
        else if (key == "slice" && takeWord(words, "thick"))
            takeNumber(words, sizes.sliceThickness);
        else if (key == "skip")
            takeNumber(words, sizes.sliceGap);
        else if (key == "pixel" && takeWord(words, "size"))
            takeNumber(words, sizes.pixelSizeX);
    }
    sizes.fieldOfViewY = sizes.fieldOfViewX;
    sizes.pixelSizeY = sizes.pixelSizeX;
    return sizes;
}

void readPFileHeader(const QString& fileName, FMRProject& project) {
    QString text;
    if (readTextFile(fileName, text))
        takeHeaderSizes(parsePFileHeader(text), fileName, project);
    else
        showWarning("ERROR: Can not open P header file !");
}
