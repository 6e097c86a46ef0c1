// Reading a file that may be compressed.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QIODevice>
#include <cstdint>
#include <memory>
#include <span>

/// Reads the bytes of a device in order, from where it stands: inflated where they begin as gzip
/// does, else as they are. Inflates no further than it is asked to.
class GzipReader {
public:
    /// The device must be open and outlive this object.
    explicit GzipReader(QIODevice& device);
    ~GzipReader();
    GzipReader(const GzipReader&) = delete;
    GzipReader& operator=(const GzipReader&) = delete;

    [[nodiscard]] bool compressed() const { return stream_ != nullptr; }
    /// The number of bytes read, less than asked for only at the end of the content or where the
    /// compressed data are damaged.
    size_t read(std::span<uint8_t> bytes);
    /// False where the content ends before.
    [[nodiscard]] bool skip(uint64_t count);

private:
    struct Stream;
    /// False at the end of the file.
    bool refill();

    QIODevice& device_;
    std::unique_ptr<Stream> stream_; ///< none for a file that is not compressed
};
