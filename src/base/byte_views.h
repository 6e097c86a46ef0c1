// The same bytes as Qt and as the readers and writers of binary data have them.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <cstdint>
#include <span>

/// Valid as long as the array is unchanged.
[[nodiscard]] inline std::span<const uint8_t> bytesOf(const QByteArray& array) {
    return {reinterpret_cast<const uint8_t*>(array.constData()), size_t(array.size())};
}

/// A copy.
[[nodiscard]] inline QByteArray byteArray(std::span<const uint8_t> bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), qsizetype(bytes.size())};
}

/// Without a copy: valid as long as the bytes are.
[[nodiscard]] inline QByteArray byteArrayView(std::span<const uint8_t> bytes) {
    return QByteArray::fromRawData(reinterpret_cast<const char*>(bytes.data()),
                                   qsizetype(bytes.size()));
}
