// Reading a file, or a part of it, into a reusable buffer.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/memory.h"

#include <QString>
#include <cstdint>

/// Which bytes of a file; all of them by default.
struct FilePart {
    qint64 offset = 0;
    qint64 length = -1;   ///< -1: to the end of the file
    bool fromEnd = false; ///< the last `length` bytes, whatever the offset
};

class FileBytes {
public:
    enum class Result { Done, CannotOpen, NoMemory };

    /// Reads what the file holds when it is opened; less if it shrinks meanwhile or ends within the
    /// part. More than 512 MiB can't be an image and gives NoMemory. The buffer only grows.
    [[nodiscard]] Result read(const QString& fileName, const FilePart& part = {});
    /// Reserves memory for reads of up to this many bytes and discards what was read. False if
    /// read() would return NoMemory.
    [[nodiscard]] bool reserve(qint64 length);

    /// The bytes of the file that was read last.
    [[nodiscard]] std::span<uint8_t> bytes() { return buffer_.span().first(size_); }

private:
    ZeroedBuffer<uint8_t> buffer_;
    size_t size_ = 0;
};
