// Texts of keys and values whose keys aren't compared: only the order of the values counts.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/text_reading.h"
#include "volume/c3d_matrix.h"
#include "volume/fmr_project.h"

#include <cmath>
#include <limits>

/// Reads on after a failure as if zeros and empty texts stood there; failed() tells at the end.
class KeyedValues {
public:
    explicit KeyedValues(const QString& text) : stream_(text) {}

    /// The next key. Also what stands between the values of a vector.
    QString key() { return stream_.word(); }
    /// Whether the first key of a text is that of its version.
    [[nodiscard]] static bool isVersionKey(const QString& key) {
        return key.toUpper() == "FILEVERSION:";
    }

    /// Values without a key before them. A number that no float holds is a failure.
    int nextInteger() { return stream_.integer(); }
    float nextReal() {
        const double value = stream_.real();
        if (std::abs(value) <= double(std::numeric_limits<float>::max()))
            return float(value);
        failed_ = true;
        return 0.0f;
    }
    /// Row by row.
    C3dMatrix nextMatrix() {
        C3dMatrix matrix;
        for (size_t row = 0; row < 4; ++row)
            for (size_t column = 0; column < 4; ++column)
                matrix.at(row, column) = nextReal();
        return matrix;
    }

    /// A key and its value.
    int integer() {
        key();
        return nextInteger();
    }
    float real() {
        key();
        return nextReal();
    }
    /// Each of the three with a key before it.
    Vector3 vector() {
        Vector3 values{};
        for (float& value : values)
            value = real();
        return values;
    }
    /// Between double quotes, with blanks; or one word where there are none.
    QString text() {
        key();
        const qsizetype start = stream_.position();
        const QString word = stream_.word();
        if (!word.startsWith('"'))
            return word;
        QString text;
        stream_.seek(start);
        failed_ = !readDelimitedString('"', text, stream_, maximumPathLength) || failed_;
        return text;
    }
    QString restOfLine() { return stream_.restOfLine().trimmed().left(maximumPathLength); }

    [[nodiscard]] bool atEnd() const { return stream_.atEnd(); }
    [[nodiscard]] bool failed() const { return failed_ || stream_.failed(); }

private:
    static constexpr int maximumPathLength = 4096;
    TokenStream stream_;
    bool failed_ = false;
};
