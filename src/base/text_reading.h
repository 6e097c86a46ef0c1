// Reading the program's text formats: white-space-separated tokens and quoted strings.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/// Maximum length of a quoted string in a file.
inline constexpr int maximumQuotedLength = 256;

/// Walks over a text in tokens, lines and characters. It never reads past the end: reads there
/// return empty values and set failed().
class TokenStream {
public:
    explicit TokenStream(QString text) : text_(std::move(text)) {}

    /// Next run of non-white-space characters; empty at the end.
    QString word();
    /// Next token as a whole number. Like the standard stream conversion it takes the longest
    /// numeric prefix ("12abc" is 12); none, or an overflow, sets failed() and gives 0.
    int integer();
    /// Next token as a finite number, with "." as decimal point; fails like integer(), with 0.0.
    double real();
    /// The rest of the current line, without its line end; moves to the start of the next line.
    QString restOfLine();
    /// Next character, or a null character at the end.
    QChar character();
    /// True when nothing but white space is left.
    [[nodiscard]] bool atEnd() const;
    /// True when no character at all is left.
    [[nodiscard]] bool exhausted() const { return position_ >= text_.size(); }
    /// True once a read found no token or no number where one was asked for.
    [[nodiscard]] bool failed() const { return failed_; }
    [[nodiscard]] qsizetype position() const { return position_; }
    void seek(qsizetype position) { position_ = std::clamp(position, qsizetype(0), text_.size()); }

private:
    void skipWhiteSpace();

    QString text_;
    qsizetype position_ = 0;
    bool failed_ = false;
};

/// Reads a text file word by word: a word that begins with `commentCharacter` drops the rest of its
/// line; every other word goes into `result`, followed by one blank. False if the file can't be
/// read (readTextFile). The text is taken as UTF-8.
[[nodiscard]] bool removeComments(const QString& path, QChar commentCharacter, QString& result);

/// The same from a text.
[[nodiscard]] QString withoutComments(const QString& text, QChar commentCharacter);

/// Reads a string between two delimiters, across line ends. Fails when the stream ends before the
/// opening delimiter. At `maximum` characters it stops and the rest stays in the stream, so that
/// the next key check fails on it. A missing closing delimiter ends the string with the stream.
[[nodiscard]] bool readDelimitedString(QChar delimiter, QString& result, TokenStream& stream,
                                       int maximum = maximumQuotedLength);

/// The same, but fails at a carriage return or line feed before the opening delimiter.
[[nodiscard]] bool readDelimitedStringInLine(QChar delimiter, QString& result, TokenStream& stream,
                                             int maximum = maximumQuotedLength);

/// Trimming of file text: blanks off the left end, then carriage returns and line feeds off the
/// right end, and nothing else.
[[nodiscard]] QString trimFileText(QString text);

/// True when the tokens are equal, ignoring case and a missing ":" at the end of the found one.
[[nodiscard]] bool tokensAgree(QString found, QString expected);

/// The text shortened for a message: a damaged file can have words of any length.
[[nodiscard]] QString shortened(const QString& text);

/// Text that may be another program's: UTF-8, or Latin-1 where the bytes are not valid UTF-8.
[[nodiscard]] QString decodedText(const QByteArray& bytes);
/// Bytes that decodedText() gives the text back from: Latin-1 where that can be, else UTF-8.
[[nodiscard]] QByteArray encodedText(const QString& text);

/// The whole of a text file as UTF-8. False, with no message, if it can't be read, is no regular
/// file (a folder, a pipe, a device) or is larger than 64 MiB.
[[nodiscard]] bool readTextFile(const QString& path, QString& text);
