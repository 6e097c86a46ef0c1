// Whole numbers in texts with thousands of lines, where formatted() takes too long.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <algorithm>
#include <array>
#include <charconv>

/// Appends the blanks, then the number as by "%*i".
inline void appendNumber(QByteArray& text, int blanks, int width, int number) {
    std::array<char, 12> digits;
    const qsizetype length =
        std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr - digits.data();
    text.append(blanks + std::max<qsizetype>(width - length, 0), ' ');
    text.append(digits.data(), length);
}
