// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/journal/byte_ring.h"

#include "base/memory.h"

#include <algorithm>

RingStretch RingStretch::part(size_t offset, size_t count) const {
    const auto& [first, second] = pieces_;
    if (offset >= first.size())
        return {second.subspan(offset - first.size(), count), {}};
    const size_t inFirst = std::min(count, first.size() - offset);
    return {first.subspan(offset, inFirst), second.first(count - inFirst)};
}

void RingStretch::copyTo(std::span<uint8_t> bytes) const {
    const RingStretch source = part(0, bytes.size());
    const auto middle = std::ranges::copy(source.pieces_[0], bytes.begin()).out;
    std::ranges::copy(source.pieces_[1], middle);
}

void RingStretch::copyFrom(std::span<const uint8_t> bytes) const {
    const RingStretch target = part(0, bytes.size());
    const size_t inFirst = target.pieces_[0].size();
    std::ranges::copy(bytes.first(inFirst), target.pieces_[0].begin());
    std::ranges::copy(bytes.subspan(inFirst), target.pieces_[1].begin());
}

bool ByteRing::allocate(size_t capacity) {
    bytes_.reset();
    capacity_ = start_ = size_ = 0;
    if (!memoryIsAvailable(capacity, 1))
        return false;
    // Not zeroed: that would touch all of it, though most runs need a few volumes' worth.
    bytes_.reset(new (std::nothrow) uint8_t[capacity]);
    if (bytes_)
        capacity_ = capacity;
    return bytes_ != nullptr;
}

void ByteRing::append(std::span<const uint8_t> bytes) {
    if (empty())
        start_ = 0; // memory that has been used is used again
    stretch(size_, bytes.size()).copyFrom(bytes);
    size_ += bytes.size();
}

void ByteRing::drop(size_t count) {
    size_ -= count;
    start_ += count;
    if (start_ >= capacity_)
        start_ -= capacity_;
}

RingStretch ByteRing::stretch(size_t offset, size_t count) {
    const std::span<uint8_t> all(bytes_.get(), capacity_);
    size_t begin = start_ + offset;
    if (begin >= capacity_)
        begin -= capacity_;
    const size_t inFirst = std::min(count, capacity_ - begin);
    return {all.subspan(begin, inFirst), all.first(count - inFirst)};
}
