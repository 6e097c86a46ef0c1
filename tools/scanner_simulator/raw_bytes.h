// Numbers and samples as the bytes of a file, in either byte order.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/byte_reader.h"

#include <QByteArray>
#include <bit>

/// Appends the lowest `size` bytes of a number.
inline void appendNumber(QByteArray& bytes, uint64_t value, int size, ByteOrder order) {
    for (int i = 0; i < size; ++i) {
        const int place = order == ByteOrder::Big ? size - 1 - i : i;
        bytes.append(char((value >> (8 * place)) & 0xFF));
    }
}

[[nodiscard]] inline QByteArray sampleBytes(std::span<const uint16_t> samples, ByteOrder order) {
    QByteArray bytes(qsizetype(samples.size()) * 2, Qt::Uninitialized);
    char* byte = bytes.data();
    const bool big = order == ByteOrder::Big;
    for (const uint16_t sample : samples) {
        *byte++ = char(big ? sample >> 8 : sample & 0xFF);
        *byte++ = char(big ? sample & 0xFF : sample >> 8);
    }
    return bytes;
}

/// A header of fixed size, initially zero. Offsets must lie inside.
class HeaderBytes {
public:
    HeaderBytes(int size, ByteOrder order) : bytes_(size, '\0'), order_(order) {}

    void int16(int offset, int value) { put(offset, uint64_t(int64_t(value)), 2); }
    void int32(int offset, int value) { put(offset, uint64_t(int64_t(value)), 4); }
    void float32(int offset, double value) {
        put(offset, std::bit_cast<uint32_t>(float(value)), 4);
    }
    void float64(int offset, double value) { put(offset, std::bit_cast<uint64_t>(value), 8); }
    void text(int offset, const QByteArray& value) { bytes_.replace(offset, value.size(), value); }
    [[nodiscard]] const QByteArray& bytes() const { return bytes_; }

private:
    void put(int offset, uint64_t value, int size) {
        QByteArray number;
        appendNumber(number, value, size, order_);
        bytes_.replace(offset, size, number);
    }

    QByteArray bytes_;
    ByteOrder order_;
};
