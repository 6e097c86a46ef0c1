// A whole file in memory, in a buffer that serves one file after the other.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/memory.h"

#include <QString>
#include <cstdint>

class FileBytes {
public:
    enum class Result { Done, CannotOpen, NoMemory };

    /// Reads what the file holds when it is opened; one that shrinks meanwhile gives less. Files of
    /// more than 512 MiB are no images and count as too large for memory. The buffer only grows.
    [[nodiscard]] Result read(const QString& fileName);

    /// The bytes of the file that was read last.
    [[nodiscard]] std::span<uint8_t> bytes() { return buffer_.span().first(size_); }

private:
    ZeroedBuffer<uint8_t> buffer_;
    size_t size_ = 0;
};
