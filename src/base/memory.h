// Run-sized memory: allocation that is checked and reported instead of thrown.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <cstddef>
#include <memory>
#include <new>
#include <span>

/// Bytes available without swapping, or within the limits of the process's control groups or of its
/// address space if that is less; the largest size_t if none is known. `root` is prepended to the
/// paths that are read.
[[nodiscard]] size_t availableMemoryBytes(const QString& root = QString());

/// True when `count` items of `size` bytes neither overflow nor exceed the available memory.
/// Systems overcommit and kill the process when the memory is touched, so a large request is
/// checked before it is made.
[[nodiscard]] bool memoryIsAvailable(size_t count, size_t size);

/// Gives what was freed back to the system, which the allocator may keep for later. Only then does
/// availableMemoryBytes() count it.
void returnFreedMemory();

/// A zeroed array whose allocation may fail without an exception.
template<typename T> class ZeroedBuffer {
public:
    /// Replaces the content by `count` zeroed items. False, and empty, when memory runs out.
    [[nodiscard]] bool allocate(size_t count) {
        release();
        if (!memoryIsAvailable(count, sizeof(T)))
            return false;
        items_.reset(new (std::nothrow) T[count]());
        size_ = items_ ? count : 0;
        return items_ != nullptr;
    }
    void release() {
        items_.reset();
        size_ = 0;
    }
    [[nodiscard]] T* data() { return items_.get(); }
    [[nodiscard]] const T* data() const { return items_.get(); }
    [[nodiscard]] size_t size() const { return size_; }
    [[nodiscard]] bool empty() const { return size_ == 0; }
    [[nodiscard]] std::span<T> span() { return {items_.get(), size_}; }
    [[nodiscard]] std::span<const T> span() const { return {items_.get(), size_}; }
    T& operator[](size_t index) { return items_[index]; }
    const T& operator[](size_t index) const { return items_[index]; }

private:
    std::unique_ptr<T[]> items_;
    size_t size_ = 0;
};
