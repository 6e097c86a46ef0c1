// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/anatomy/gzip_writer.h"

#include <algorithm>
#include <array>
#include <zlib.h>

namespace {

constexpr int gzipWindow = 15 + 16; // the largest window, with the frame of gzip
constexpr int memoryLevel = 8;      // the default of zlib
constexpr size_t blockBytes = 1 << 16;

} // namespace

struct GzipWriter::Stream {
    z_stream state{};
    std::array<uint8_t, blockBytes> output{};
};

GzipWriter::GzipWriter(QIODevice& device, bool compress) : device_(device) {
    if (!compress)
        return;
    stream_ = std::make_unique<Stream>();
    failed_ = deflateInit2(&stream_->state, Z_DEFAULT_COMPRESSION, Z_DEFLATED, gzipWindow,
                           memoryLevel, Z_DEFAULT_STRATEGY) != Z_OK;
}

GzipWriter::~GzipWriter() {
    if (stream_)
        deflateEnd(&stream_->state);
}

bool GzipWriter::deflateAll(std::span<const uint8_t> bytes, int flush) {
    z_stream& state = stream_->state;
    state.next_in = const_cast<Bytef*>(bytes.data()); // zlib only reads it
    state.avail_in = uInt(bytes.size());
    int result = Z_OK;
    do {
        state.next_out = stream_->output.data();
        state.avail_out = uInt(blockBytes);
        result = deflate(&state, flush);
        const qint64 made = qint64(blockBytes - state.avail_out);
        if (result == Z_STREAM_ERROR ||
            device_.write(reinterpret_cast<const char*>(stream_->output.data()), made) != made)
            return false;
    } while (flush == Z_FINISH ? result != Z_STREAM_END : state.avail_out == 0);
    return true;
}

bool GzipWriter::write(std::span<const uint8_t> bytes) {
    if (!stream_)
        failed_ = failed_ || device_.write(reinterpret_cast<const char*>(bytes.data()),
                                           qint64(bytes.size())) != qint64(bytes.size());
    while (stream_ && !failed_ && !bytes.empty()) {
        // zlib counts its input in 32 bits.
        const auto part = bytes.first(std::min(bytes.size(), size_t(1) << 30));
        failed_ = !deflateAll(part, Z_NO_FLUSH);
        bytes = bytes.subspan(part.size());
    }
    return !failed_;
}

bool GzipWriter::finish() {
    if (stream_ && !failed_)
        failed_ = !deflateAll({}, Z_FINISH);
    return !failed_;
}
