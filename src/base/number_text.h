// Numbers in texts: what formatted() has no form for, or takes too long for.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <algorithm>
#include <array>
#include <charconv>

/// Appends, in texts with thousands of lines, the blanks, then the number as by "%*i".
inline void appendNumber(QByteArray& text, int blanks, int width, int number) {
    std::array<char, 12> digits;
    const qsizetype length =
        std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr - digits.data();
    text.append(blanks + std::max<qsizetype>(width - length, 0), ' ');
    text.append(digits.data(), length);
}

/// The fewest digits that read back as the same float, with "." as decimal point.
[[nodiscard]] inline QByteArray shortestText(float value) {
    std::array<char, 32> digits;
    const char* end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
    return {digits.data(), end - digits.data()};
}
