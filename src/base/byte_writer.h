// Writing of binary data, little endian: the counterpart of base/byte_reader.h.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/byte_views.h"

#include <QString>
#include <algorithm>
#include <bit>
#include <cstdint>
#include <limits>
#include <span>
#include <vector>

/// Appends numbers, bytes and texts to one piece of memory.
class ByteWriter {
public:
    void u8(uint8_t value) { number(value, 1); }
    void u16(uint16_t value) { number(value, 2); }
    void u32(uint32_t value) { number(value, 4); }
    void u64(uint64_t value) { number(value, 8); }
    void i32(int32_t value) { u32(uint32_t(value)); }
    void i64(int64_t value) { u64(uint64_t(value)); }
    void f32(float value) { u32(std::bit_cast<uint32_t>(value)); }

    /// Bytes as they are, without their number.
    void raw(std::span<const uint8_t> bytes) {
        result_.insert(result_.end(), bytes.begin(), bytes.end());
    }
    /// Their number as a u32, then the bytes; what a u32 can't count is cut off.
    void bytes(std::span<const uint8_t> bytes) {
        constexpr size_t most = std::numeric_limits<uint32_t>::max();
        const std::span<const uint8_t> counted = bytes.first(std::min(bytes.size(), most));
        u32(uint32_t(counted.size()));
        raw(counted);
    }
    /// UTF-8, written like bytes().
    void text(const QString& text) {
        const QByteArray encoded = text.toUtf8();
        bytes(bytesOf(encoded));
    }
    [[nodiscard]] const std::vector<uint8_t>& result() const { return result_; }

private:
    void number(uint64_t value, size_t size) {
        for (size_t i = 0; i < size; ++i)
            result_.push_back(uint8_t(value >> (8 * i)));
    }

    std::vector<uint8_t> result_;
};
