// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/anatomy/gzip_reader.h"

#include <QByteArray>
#include <algorithm>
#include <array>
#include <vector>
#include <zlib.h>

namespace {

constexpr int gzipWindow = 15 + 16; // the largest window, with the frame of gzip
constexpr size_t blockBytes = 1 << 16;

} // namespace

struct GzipReader::Stream {
    z_stream state{};
    std::array<uint8_t, blockBytes> input{};
    bool ended = false; ///< of content or of usable data
};

GzipReader::GzipReader(QIODevice& device) : device_(device) {
    if (device.peek(2) != QByteArray("\x1f\x8b"))
        return;
    stream_ = std::make_unique<Stream>();
    stream_->ended = inflateInit2(&stream_->state, gzipWindow) != Z_OK;
}

GzipReader::~GzipReader() {
    if (stream_)
        inflateEnd(&stream_->state);
}

bool GzipReader::refill() {
    const qint64 got =
        device_.read(reinterpret_cast<char*>(stream_->input.data()), qint64(blockBytes));
    stream_->state.next_in = stream_->input.data();
    stream_->state.avail_in = uInt(std::max<qint64>(got, 0));
    return got > 0;
}

size_t GzipReader::read(std::span<uint8_t> bytes) {
    if (!stream_) {
        const qint64 got =
            device_.read(reinterpret_cast<char*>(bytes.data()), qint64(bytes.size()));
        return size_t(std::max<qint64>(got, 0));
    }
    size_t done = 0;
    while (done < bytes.size() && !stream_->ended) {
        if (stream_->state.avail_in == 0 && !refill())
            break;
        const size_t wanted = std::min(bytes.size() - done, size_t(1) << 30);
        stream_->state.next_out = bytes.data() + done;
        stream_->state.avail_out = uInt(wanted);
        const int result = inflate(&stream_->state, Z_NO_FLUSH);
        done += wanted - stream_->state.avail_out;
        // A file may be several compressed parts, one behind the other.
        stream_->ended = result == Z_STREAM_END ? inflateReset(&stream_->state) != Z_OK
                                                : result != Z_OK && result != Z_BUF_ERROR;
    }
    return done;
}

bool GzipReader::skip(uint64_t count) {
    std::vector<uint8_t> block(size_t(std::min<uint64_t>(count, blockBytes)));
    while (count > 0) {
        const auto part = std::span(block).first(size_t(std::min<uint64_t>(count, block.size())));
        if (read(part) != part.size())
            return false;
        count -= part.size();
    }
    return true;
}
