// Writing a file, compressed or not.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QIODevice>
#include <cstdint>
#include <memory>
#include <span>

/// Passes bytes on to a device, as they are or as gzip.
class GzipWriter {
public:
    /// The device must be open and outlive this object.
    GzipWriter(QIODevice& device, bool compress);
    ~GzipWriter();
    GzipWriter(const GzipWriter&) = delete;
    GzipWriter& operator=(const GzipWriter&) = delete;

    /// False when the device takes no more or memory runs out; what follows then is false as well.
    [[nodiscard]] bool write(std::span<const uint8_t> bytes);
    /// Writes what is held back. To be called once, at the end.
    [[nodiscard]] bool finish();

private:
    struct Stream;
    bool deflateAll(std::span<const uint8_t> bytes, int flush);

    QIODevice& device_;
    std::unique_ptr<Stream> stream_; ///< none without compression
    bool failed_ = false;
};
