// The lines of a text file that another program appends to while it is read.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

/// Text of another program: UTF-8, or Latin-1 where the bytes are no UTF-8.
[[nodiscard]] QString decodedText(const QByteArray& bytes);
/// How many of the bytes the first `characters` of their decoded text stand for.
[[nodiscard]] qsizetype bytesBefore(const QByteArray& bytes, const QString& text,
                                    qsizetype characters);

/// Holds the file open and hands out whole lines only. A line whose end has not been written yet
/// stays until it has; nothing is read from the file twice, and nothing is ever written or locked.
///
/// The file may shrink or vanish meanwhile: no line comes then until the file has grown past what
/// was read of it. A file that takes its place under the same name is not looked at.
class ArrivingLines {
public:
    enum class LineEnd { LineFeed, CarriageReturnOrLineFeed };
    enum class Taken {
        Nothing, ///< no line has ended since
        Line,
        TooLong, ///< one of more than maximumLine bytes, which is left out
    };
    static constexpr qsizetype maximumLine = 64 << 10;
    static constexpr qsizetype maximumHead = 1 << 20;

    /// Opens an existing regular file at its start. False, without a message, when that fails.
    [[nodiscard]] bool open(const QString& path, QIODevice::OpenMode mode, LineEnd lineEnd);
    void close();
    [[nodiscard]] bool isOpen() const { return file_.isOpen(); }

    /// Before the first line is taken: what stood in the file when it was opened, at most
    /// maximumHead bytes of it; with `wholeLines` up to its last line feed.
    [[nodiscard]] QByteArray head(bool wholeLines) const;
    /// Lines begin behind this many bytes of the head.
    void skipHead(qsizetype bytes);

    /// The next line that is not blank. Reads a bounded part of the file, so that a hostile one
    /// can't hold up its caller.
    [[nodiscard]] Taken take(QString& line);

private:
    [[nodiscard]] qsizetype lineEnd();
    /// Appends what has been written since. False when that is nothing.
    [[nodiscard]] bool readMore();

    QFile file_;
    LineEnd lineEnd_ = LineEnd::LineFeed;
    QByteArray buffer_;     ///< read and not handed out
    qsizetype next_ = 0;    ///< start of the next line in the buffer
    qsizetype scanned_ = 0; ///< no line ends between next_ and here
    bool tooLong_ = false;  ///< the beginning of the next line was dropped
};
