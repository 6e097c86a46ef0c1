// A file, or a part of it, in memory, in a buffer that serves one file after the other.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/memory.h"

#include <QString>
#include <cstdint>

/// Which bytes of a file; all of them unless stated otherwise.
struct FilePart {
    qint64 offset = 0;
    qint64 length = -1;   ///< -1: to the end of the file
    bool fromEnd = false; ///< the last `length` bytes, whatever the offset
};

class FileBytes {
public:
    enum class Result { Done, CannotOpen, NoMemory };

    /// Reads what the file holds when it is opened; one that shrinks meanwhile, or ends before the
    /// part does, gives less. More than 512 MiB are no image and count as too large for memory.
    /// The buffer only grows.
    [[nodiscard]] Result read(const QString& fileName, const FilePart& part = {});
    /// Room for this many bytes, so that no read of as many can lack it; what was read is gone.
    /// False where read() would say NoMemory.
    [[nodiscard]] bool reserve(qint64 length);

    /// The bytes of the file that was read last.
    [[nodiscard]] std::span<uint8_t> bytes() { return buffer_.span().first(size_); }

private:
    ZeroedBuffer<uint8_t> buffer_;
    size_t size_ = 0;
};
