// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/memory.h"

#include <QByteArray>
#include <QFile>
#include <limits>

size_t availableMemoryBytes() {
    QFile file(QStringLiteral("/proc/meminfo"));
    if (!file.open(QIODevice::ReadOnly))
        return std::numeric_limits<size_t>::max();
    const QByteArray text = file.readAll();
    const QByteArray key = "MemAvailable:";
    const qsizetype start = text.indexOf(key);
    if (start < 0)
        return std::numeric_limits<size_t>::max();
    const qsizetype end = text.indexOf("kB", start);
    return size_t(text.mid(start + key.size(), end - start - key.size()).trimmed().toULongLong()) *
           1024;
}

bool memoryIsAvailable(size_t count, size_t size) {
    if (count > std::numeric_limits<size_t>::max() / 2 / size)
        return false;
    // Looking the figure up costs a file access; small requests don't need it.
    constexpr size_t smallRequest = size_t(16) << 20;
    return count * size <= smallRequest || count * size <= availableMemoryBytes();
}
