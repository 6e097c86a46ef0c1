// Texts of keys and values in a fixed order, read up to the first fault.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/rgb_color.h"
#include "base/text_reading.h"

/// Walks over a text. After a fault it stays where it is and gives zeros and empty texts, so that a
/// parser needs to look only where it would loop or allocate.
class KeyedTextReader {
public:
    explicit KeyedTextReader(const QString& text) : text_(text), stream_(text) {}

    [[nodiscard]] bool good() const { return fault_.isEmpty() && !stream_.failed(); }
    /// "line 17: no valid number"; empty without a fault.
    [[nodiscard]] QString fault() const;
    /// Says what is wrong here; the first fault counts.
    void fail(const QString& fault);

    /// The word that comes next, without moving; empty at the end.
    [[nodiscard]] QString nextWord();
    /// Moves behind the key if it comes next (tokensAgree).
    [[nodiscard]] bool nextIs(const char* key);
    int integer() { return good() ? stream_.integer() : 0; }
    /// Finite.
    double real() { return good() ? stream_.real() : 0.0; }
    /// Finite as a float, too.
    float number();
    /// What is left of the line, as oneLine().
    QString restOfLine();

    /// A missing key is a fault.
    void pass(const char* key);
    int integerAfter(const char* key);
    /// The rest of the line behind the key.
    QString lineAfter(const char* key);
    /// A text in double quotes on the line of the key; at most 4096 characters.
    QString quotedAfter(const char* key);
    /// Red, green and blue, limited to 0 to 255.
    RgbColor colorAfter(const char* key);
    /// A number of items that each take at least `shortestItem` characters; one that is negative or
    /// more than the rest of the text holds is a fault.
    int countAfter(const char* key, qsizetype shortestItem);

    [[nodiscard]] bool atEnd() const { return stream_.atEnd(); }
    [[nodiscard]] bool textHolds(qsizetype count, qsizetype shortestItem) const {
        return count <= (text_.size() - stream_.position()) / shortestItem;
    }

private:
    QString text_;
    TokenStream stream_;
    QString fault_;
};

/// A text as it can stand on a line of a file: line ends and control characters are blanks, without
/// blanks at its ends.
[[nodiscard]] QString oneLine(QString text);
