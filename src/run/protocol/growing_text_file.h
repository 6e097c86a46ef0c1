// A text file that another program appends to while it is read.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

/// Number of bytes that the first `characters` of their text, as decodedText() gives it, take up.
[[nodiscard]] qsizetype bytesBefore(const QByteArray& bytes, const QString& text,
                                    qsizetype characters);

/// Keeps the file open and returns complete lines only: a line is withheld until its end has been
/// written. Nothing is read twice, written or locked.
///
/// If the file shrinks or is deleted, no line is returned until it has grown past what was read. A
/// new file of the same name is ignored.
class GrowingTextFile {
public:
    enum class LineEnd { LineFeed, CarriageReturnOrLineFeed };
    enum class ReadResult {
        Nothing, ///< no further line is complete
        Line,
        TooLong, ///< a line of more than maximumLine bytes, which is skipped
    };
    static constexpr qsizetype maximumLine = 64 << 10;
    static constexpr qsizetype maximumHead = 1 << 20;

    /// Opens an existing regular file at its start. False, without a message, when that fails.
    [[nodiscard]] bool open(const QString& path, QIODevice::OpenMode mode, LineEnd lineEnd);
    void close();
    [[nodiscard]] bool isOpen() const { return file_.isOpen(); }

    /// Before the first line is read: the content of the file when it was opened, at most
    /// maximumHead bytes; with `wholeLines` up to its last line feed.
    [[nodiscard]] QByteArray head(bool wholeLines) const;
    /// Starts the lines after this many bytes of the head.
    void skipHead(qsizetype bytes);
    /// The same number, until the first line is read.
    [[nodiscard]] qsizetype skippedBytes() const { return next_; }

    /// Adds complete lines, each with its line feed, as if they stood next in the file; also after
    /// close(), for a recorded run.
    void feed(const QByteArray& lines) { buffer_ += lines; }

    /// Returns the next non-blank line. Reads a bounded part of the file, so that a huge one can't
    /// block the caller.
    [[nodiscard]] ReadResult readLine(QString& line);

private:
    [[nodiscard]] qsizetype lineEnd();
    /// Appends newly written bytes. False when there are none.
    [[nodiscard]] bool readMore();

    QFile file_;
    LineEnd lineEnd_ = LineEnd::LineFeed;
    QByteArray buffer_;     ///< read but not yet returned
    qsizetype next_ = 0;    ///< start of the next line in the buffer
    qsizetype scanned_ = 0; ///< no line ends between next_ and here
    bool tooLong_ = false;  ///< the start of the next line was dropped
};
