// The four bytes of the pixel data key (7FE0,0010) in either byte order.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/byte_reader.h"

namespace pixel_key {

inline constexpr size_t size = 4;

/// True when the two bytes are those of the group, in either order.
[[nodiscard]] constexpr bool isGroup(uint8_t first, uint8_t second) {
    return (first == 0xE0 && second == 0x7F) || (first == 0x7F && second == 0xE0);
}

/// True when the key is at `offset`. Group and number are checked separately: some files mix byte
/// orders in the key. `offset` + size must be inside.
[[nodiscard]] constexpr bool isAt(std::span<const uint8_t> bytes, size_t offset) {
    const uint8_t third = bytes[offset + 2];
    const uint8_t fourth = bytes[offset + 3];
    return isGroup(bytes[offset], bytes[offset + 1]) &&
           ((third == 0x10 && fourth == 0x00) || (third == 0x00 && fourth == 0x10));
}

/// Byte order of the key at `offset`, from its element number.
[[nodiscard]] constexpr ByteOrder byteOrder(std::span<const uint8_t> bytes, size_t offset) {
    return bytes[offset + 2] == 0x10 ? ByteOrder::Little : ByteOrder::Big;
}

/// True when the value representation after the key at `offset` is this one.
[[nodiscard]] constexpr bool isFollowedBy(std::span<const uint8_t> bytes, size_t offset,
                                          const char* representation) {
    return bytes.size() - offset >= size + 2 &&
           bytes[offset + size] == uint8_t(representation[0]) &&
           bytes[offset + size + 1] == uint8_t(representation[1]);
}

} // namespace pixel_key
