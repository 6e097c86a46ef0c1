// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/protocol/growing_text_file.h"

#include "base/text_reading.h"

#include <QFileInfo>
#include <algorithm>
#include <utility>

namespace {

constexpr qsizetype bytesPerRead = 64 << 10;
constexpr qsizetype bytesPerCall = 1 << 20;
constexpr QByteArrayView byteOrderMark = "\xEF\xBB\xBF"; // written by some editors

} // namespace

qsizetype bytesBefore(const QByteArray& bytes, const QString& text, qsizetype characters) {
    const bool isUtf8 = text.toUtf8() == bytes;
    return isUtf8 ? text.left(characters).toUtf8().size() : characters;
}

bool GrowingTextFile::open(const QString& path, QIODevice::OpenMode mode, LineEnd lineEnd) {
    close();
    // Opening a pipe would block until its other end is opened.
    if (!QFileInfo(path).isFile())
        return false;
    file_.setFileName(path);
    lineEnd_ = lineEnd;
    if (!file_.open(mode | QIODevice::Unbuffered))
        return false;
    buffer_ = file_.read(maximumHead);
    if (file_.error() != QFileDevice::NoError)
        return false;
    if (buffer_.startsWith(byteOrderMark))
        buffer_.remove(0, byteOrderMark.size());
    return true;
}

void GrowingTextFile::close() {
    file_.close();
    buffer_ = {};
    next_ = scanned_ = 0;
    tooLong_ = false;
}

QByteArray GrowingTextFile::head(bool wholeLines) const {
    return wholeLines ? buffer_.left(buffer_.lastIndexOf('\n') + 1) : buffer_;
}

void GrowingTextFile::skipHead(qsizetype bytes) {
    next_ = scanned_ = std::clamp(bytes, qsizetype(0), buffer_.size());
}

GrowingTextFile::ReadResult GrowingTextFile::readLine(QString& line) {
    for (qsizetype looked = 0; looked < bytesPerCall;) {
        const qsizetype end = lineEnd();
        if (end < 0) {
            if (!readMore())
                return ReadResult::Nothing;
            looked += bytesPerRead;
            continue;
        }
        const QByteArray bytes = buffer_.mid(next_, end - next_);
        next_ = scanned_ = end + 1;
        looked += bytes.size() + 1;
        if (std::exchange(tooLong_, false) || bytes.size() > maximumLine)
            return ReadResult::TooLong;
        line = decodedText(bytes);
        if (!line.trimmed().isEmpty())
            return ReadResult::Line;
    }
    return ReadResult::Nothing;
}

qsizetype GrowingTextFile::lineEnd() {
    const bool carriageReturnEnds = lineEnd_ == LineEnd::CarriageReturnOrLineFeed;
    const auto end =
        std::find_if(buffer_.cbegin() + scanned_, buffer_.cend(), [carriageReturnEnds](char c) {
            return c == '\n' || (carriageReturnEnds && c == '\r');
        });
    scanned_ = end - buffer_.cbegin();
    return end == buffer_.cend() ? -1 : scanned_;
}

bool GrowingTextFile::readMore() {
    if (!file_.isOpen())
        return false;
    buffer_.remove(0, next_);
    next_ = 0;
    if (buffer_.size() > maximumLine) {
        buffer_.clear();
        tooLong_ = true;
    }
    scanned_ = buffer_.size();
    buffer_ += file_.read(bytesPerRead);
    return buffer_.size() > scanned_;
}
