// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/keyed_text_reader.h"

#include <cmath>
#include <limits>

QString KeyedTextReader::fault() const {
    if (good())
        return {};
    return QStringLiteral("line %1: %2")
        .arg(text_.left(stream_.position()).count('\n') + 1)
        .arg(fault_.isEmpty() ? QStringLiteral("no valid number") : fault_);
}

void KeyedTextReader::fail(const QString& fault) {
    if (good())
        fault_ = fault;
}

QString KeyedTextReader::nextWord() {
    if (!good() || stream_.atEnd())
        return {};
    const QString word = stream_.word();
    stream_.seek(stream_.position() - word.size());
    return word;
}

bool KeyedTextReader::nextIs(const char* key) {
    const QString found = nextWord();
    const bool agrees = !found.isEmpty() && tokensAgree(found, key);
    if (agrees)
        stream_.word();
    return agrees;
}

float KeyedTextReader::number() {
    const double value = real();
    if (std::abs(value) <= double(std::numeric_limits<float>::max()))
        return float(value);
    fail(QStringLiteral("a number out of range"));
    return 0.0f;
}

QString KeyedTextReader::restOfLine() {
    return good() ? oneLine(stream_.restOfLine()) : QString();
}

void KeyedTextReader::pass(const char* key) {
    if (!nextIs(key))
        fail(QStringLiteral("\"%1\" is missing").arg(key));
}

int KeyedTextReader::integerAfter(const char* key) {
    pass(key);
    return integer();
}

QString KeyedTextReader::lineAfter(const char* key) {
    pass(key);
    return restOfLine();
}

QString KeyedTextReader::quotedAfter(const char* key) {
    constexpr int longest = 4096; // the names of files can be paths
    pass(key);
    QString text;
    if (good() &&
        (!readDelimitedStringInLine('"', text, stream_, longest + 1) || text.size() > longest))
        fail(QStringLiteral("no text in double quotes"));
    return text;
}

RgbColor KeyedTextReader::colorAfter(const char* key) {
    pass(key);
    RgbColor color;
    for (int* const channel : {&color.red, &color.green, &color.blue})
        *channel = std::clamp(integer(), 0, 255);
    return color;
}

int KeyedTextReader::countAfter(const char* key, qsizetype shortestItem) {
    const int count = integerAfter(key);
    if (count < 0 || !textHolds(count, shortestItem))
        fail(QStringLiteral("a number of %1, which the file does not hold").arg(count));
    return good() ? count : 0;
}

QString oneLine(QString text) {
    for (QChar& character : text)
        if (character.category() == QChar::Other_Control ||
            character.category() == QChar::Separator_Line ||
            character.category() == QChar::Separator_Paragraph)
            character = ' ';
    return text.trimmed();
}
