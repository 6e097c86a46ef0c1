// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/ge_p_header.h"

#include "base/messages.h"
#include "base/text_reading.h"
#include "intake/header_numbers.h"

namespace {

// Takes the next word if it is this one.
bool takeWord(TokenStream& words, const char* wanted) {
    const qsizetype before = words.position();
    if (words.word() == wanted)
        return true;
    words.seek(before);
    return false;
}

// The number behind the next word, which is a sign of equality or a colon.
void takeNumber(TokenStream& words, std::optional<float>& target) {
    words.word();
    TokenStream number(words.word());
    const double value = number.real();
    if (!number.failed())
        target = limitedFloat(value);
}

} // namespace

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
