// Bounds-checked reading of binary data in either byte order.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/byte_views.h"

#include <QString>
#include <bit>
#include <cstdint>
#include <span>

/// 1 little endian, 2 big endian, as settings and headers count them.
enum class ByteOrder : int32_t { Little = 1, Big = 2 };

inline constexpr ByteOrder hostByteOrder =
    std::endian::native == std::endian::big ? ByteOrder::Big : ByteOrder::Little;

/// Reads numbers at a moving position. A read past the end gives 0 and sets failed() for good.
class ByteReader {
public:
    explicit ByteReader(std::span<const uint8_t> bytes, ByteOrder order = ByteOrder::Little)
        : bytes_(bytes), order_(order) {}

    [[nodiscard]] bool failed() const { return failed_; }
    [[nodiscard]] size_t position() const { return position_; }
    [[nodiscard]] size_t remaining() const { return bytes_.size() - position_; }
    void setOrder(ByteOrder order) { order_ = order; }

    /// False, and failed(), when the position is beyond the end.
    bool seek(size_t position) {
        if (position > bytes_.size())
            failed_ = true;
        else
            position_ = position;
        return !failed_;
    }
    bool skip(size_t count) {
        if (count > remaining())
            failed_ = true;
        else
            position_ += count;
        return !failed_;
    }
    /// A view of the next `count` bytes; empty, and failed(), when there are fewer.
    std::span<const uint8_t> take(size_t count) {
        const size_t start = position_;
        return skip(count) ? bytes_.subspan(start, count) : std::span<const uint8_t>();
    }
    uint8_t u8() { return uint8_t(number(1)); }
    uint16_t u16() { return uint16_t(number(2)); }
    int16_t i16() { return int16_t(u16()); }
    uint32_t u32() { return uint32_t(number(4)); }
    int32_t i32() { return int32_t(u32()); }
    uint64_t u64() { return number(8); }
    int64_t i64() { return int64_t(u64()); }
    float f32() { return std::bit_cast<float>(u32()); }
    double f64() { return std::bit_cast<double>(u64()); }

    /// Bytes after their number, a u32. Empty, and failed(), when there are fewer.
    QByteArray sizedBytes() { return byteArray(take(u32())); }
    /// UTF-8 as sizedBytes().
    QString text() { return QString::fromUtf8(sizedBytes()); }

private:
    uint64_t number(size_t size) {
        uint64_t value = 0;
        const std::span<const uint8_t> bytes = take(size);
        for (size_t i = 0; i < bytes.size(); ++i) {
            const size_t shift = order_ == ByteOrder::Little ? i : bytes.size() - 1 - i;
            value |= uint64_t(bytes[i]) << (8 * shift);
        }
        return value;
    }

    std::span<const uint8_t> bytes_;
    ByteOrder order_;
    size_t position_ = 0;
    bool failed_ = false;
};
