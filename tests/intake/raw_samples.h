// Little-endian samples, as in raw files.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "intake_run.h"

#include <QDataStream>
#include <numeric>

inline QByteArray rawSamples(const std::vector<int>& values) {
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setByteOrder(QDataStream::LittleEndian);
    for (const int value : values)
        stream << quint16(value);
    return bytes;
}

inline std::vector<int> countedFrom(int first, size_t count) {
    std::vector<int> values(count);
    std::iota(values.begin(), values.end(), first);
    return values;
}

inline std::vector<int> valuesOf(const auto& volume) {
    return {volume.data(), volume.data() + volume.size()};
}
