// A queue of bytes in one piece of memory that is used again and again.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

/// A stretch of a ring: the second piece is empty unless the stretch goes over the ring's end.
class RingStretch {
public:
    RingStretch(std::span<uint8_t> first, std::span<uint8_t> second) : pieces_{first, second} {}

    [[nodiscard]] const std::array<std::span<uint8_t>, 2>& pieces() const { return pieces_; }
    /// `count` bytes from `offset`; both lie inside.
    [[nodiscard]] RingStretch part(size_t offset, size_t count) const;
    /// Both copy as many bytes as `bytes` has, from or to the beginning.
    void copyTo(std::span<uint8_t> bytes) const;
    void copyFrom(std::span<const uint8_t> bytes) const;

private:
    std::array<std::span<uint8_t>, 2> pieces_;
};

/// First in, first out. Not for several threads at once; but a stretch may be read and written
/// while bytes are appended, since they go elsewhere.
class ByteRing {
public:
    /// An empty ring of this capacity. False, with a capacity of 0, when memory runs out. The
    /// memory is taken from the system as it is used for the first time.
    [[nodiscard]] bool allocate(size_t capacity);
    [[nodiscard]] size_t capacity() const { return capacity_; }
    [[nodiscard]] size_t size() const { return size_; }
    [[nodiscard]] bool empty() const { return size_ == 0; }
    [[nodiscard]] size_t room() const { return capacity_ - size_; }

    /// There must be room for them.
    void append(std::span<const uint8_t> bytes);
    /// The first `count` bytes, of which there must be so many. They stay where they are until they
    /// are dropped.
    [[nodiscard]] RingStretch front(size_t count) { return stretch(0, count); }
    void drop(size_t count);

private:
    RingStretch stretch(size_t offset, size_t count);

    std::unique_ptr<uint8_t[]> bytes_;
    size_t capacity_ = 0;
    size_t start_ = 0; ///< index of the first byte
    size_t size_ = 0;
};
