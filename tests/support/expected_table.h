// Numbers that a script beside the test has computed: lines of cells, divided by tabs.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "support/files.h"

#include <vector>

using Cells = QByteArrayList;

/// The lines whose first cell is `name`, without it. The file is relative to the folder of tests.
inline std::vector<Cells> expectedLines(const char* file, const QByteArray& name) {
    std::vector<Cells> lines;
    const QByteArray table = contentOf(QStringLiteral(VELO_SOURCE_DIR "/tests/") + file);
    for (const QByteArray& line : table.trimmed().split('\n'))
        if (line.startsWith(name + '\t'))
            lines.push_back(line.split('\t').mid(1));
    EXPECT_FALSE(lines.empty()) << file << ": " << name.toStdString();
    return lines;
}

template<typename Number = double> std::vector<Number> numbersOf(const Cells& cells) {
    std::vector<Number> numbers;
    for (const QByteArray& cell : cells)
        numbers.push_back(Number(cell.toDouble()));
    return numbers;
}

/// Of the only line with this name.
template<typename Number = double>
std::vector<Number> expectedNumbers(const char* file, const QByteArray& name) {
    const std::vector<Cells> lines = expectedLines(file, name);
    return lines.empty() ? std::vector<Number>() : numbersOf<Number>(lines[0]);
}
