// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/text_reading.h"

#include "base/plain_file.h"

#include <QStringDecoder>
#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <limits>

namespace {

bool isLineEnd(QChar character) {
    return character == '\n' || character == '\r';
}

enum class LineEnds { Skip, Fail };

bool readDelimited(QChar delimiter, QString& result, TokenStream& stream, int maximum,
                   LineEnds beforeOpening) {
    result.clear();
    for (;;) {
        if (stream.exhausted())
            return false;
        const QChar character = stream.character();
        if (character == delimiter)
            break;
        if (beforeOpening == LineEnds::Fail && isLineEnd(character))
            return false;
    }
    while (result.size() < maximum && !stream.exhausted()) {
        const QChar character = stream.character();
        if (character == delimiter)
            break;
        result += character;
    }
    return true;
}

} // namespace

void TokenStream::skipWhiteSpace() {
    while (position_ < text_.size() && text_[position_].isSpace())
        ++position_;
}

QString TokenStream::word() {
    skipWhiteSpace();
    const qsizetype start = position_;
    while (position_ < text_.size() && !text_[position_].isSpace())
        ++position_;
    if (position_ == start)
        failed_ = true;
    return text_.mid(start, position_ - start);
}

int TokenStream::integer() {
    const QByteArray token = word().toLatin1();
    char* end = nullptr;
    errno = 0;
    const long value = std::strtol(token.constData(), &end, 10);
    if (end == token.constData() || errno != 0 || value > std::numeric_limits<int>::max() ||
        value < std::numeric_limits<int>::min()) {
        failed_ = true;
        return 0;
    }
    return int(value);
}

double TokenStream::real() {
    QByteArray token = word().toLatin1();
    // This conversion rejects a plus sign, but its decimal point doesn't depend on the locale.
    if (token.startsWith('+') && !token.startsWith("+-"))
        token.remove(0, 1);
    double value = 0.0;
    const std::from_chars_result result =
        std::from_chars(token.constData(), token.constData() + token.size(), value);
    if (result.ec == std::errc() && std::isfinite(value))
        return value;
    failed_ = true;
    return 0.0;
}

QString TokenStream::restOfLine() {
    const qsizetype start = position_;
    while (position_ < text_.size() && text_[position_] != '\n')
        ++position_;
    QString line = text_.mid(start, position_ - start);
    if (position_ < text_.size())
        ++position_;
    if (line.endsWith('\r'))
        line.chop(1);
    return line;
}

QChar TokenStream::character() {
    return position_ < text_.size() ? text_[position_++] : QChar();
}

bool TokenStream::atEnd() const {
    for (qsizetype i = position_; i < text_.size(); ++i)
        if (!text_[i].isSpace())
            return false;
    return true;
}

bool removeComments(const QString& path, QChar commentCharacter, QString& result) {
    QString text;
    if (!readTextFile(path, text))
        return false;
    result = withoutComments(text, commentCharacter);
    return true;
}

QString withoutComments(const QString& text, QChar commentCharacter) {
    QString result;
    result.reserve(text.size() + 1);
    TokenStream stream(text);
    while (!stream.atEnd()) {
        const QString word = stream.word();
        if (word.startsWith(commentCharacter))
            stream.restOfLine();
        else
            result.append(word).append(' ');
    }
    return result;
}

bool readDelimitedString(QChar delimiter, QString& result, TokenStream& stream, int maximum) {
    return readDelimited(delimiter, result, stream, maximum, LineEnds::Skip);
}

bool readDelimitedStringInLine(QChar delimiter, QString& result, TokenStream& stream, int maximum) {
    return readDelimited(delimiter, result, stream, maximum, LineEnds::Fail);
}

QString trimFileText(QString text) {
    while (text.startsWith(' '))
        text.remove(0, 1);
    while (!text.isEmpty() && isLineEnd(text.back()))
        text.chop(1);
    return text;
}

bool tokensAgree(QString found, QString expected) {
    found = found.toUpper();
    expected = expected.toUpper();
    if (expected.endsWith(':') && !found.endsWith(':'))
        found += ':';
    return found == expected;
}

QString shortened(const QString& text) {
    constexpr qsizetype maximumShown = 64;
    return text.size() > maximumShown ? text.left(maximumShown) + "..." : text;
}

QString decodedText(const QByteArray& bytes) {
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless |
                                                     QStringDecoder::Flag::ConvertInitialBom);
    QString text = decoder.decode(bytes);
    return decoder.hasError() ? QString::fromLatin1(bytes) : text;
}

QByteArray encodedText(const QString& text) {
    const QByteArray bytes = text.toLatin1();
    return decodedText(bytes) == text ? bytes : text.toUtf8();
}

bool readTextFile(const QString& path, QString& text) {
    // Settings and protocols are a few kilobytes; a larger file is not one of ours and is not read
    // into memory.
    constexpr qint64 maximumSize = 64 << 20;
    QFile file(path);
    if (!openPlainFile(file))
        return false;
    // read() allocates as much as it is asked for.
    const QByteArray bytes = file.read(std::min(maximumSize, file.size()) + 1);
    if (file.error() != QFileDevice::NoError || bytes.size() > maximumSize)
        return false;
    text = QString::fromUtf8(bytes);
    return true;
}
