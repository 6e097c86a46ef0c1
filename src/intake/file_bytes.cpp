// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/file_bytes.h"

#include "base/plain_file.h"

#include <algorithm>
#include <utility>

namespace {

// First byte and number of bytes of the part that a file of this size holds.
std::pair<qint64, qint64> presentPart(const FilePart& part, qint64 fileSize) {
    const qint64 length = part.length < 0 ? fileSize : std::min(part.length, fileSize);
    const qint64 offset =
        std::clamp(part.fromEnd ? fileSize - length : part.offset, qint64(0), fileSize);
    return {offset, std::min(length, fileSize - offset)};
}

} // namespace

bool FileBytes::reserve(qint64 length) {
    constexpr qint64 largestPart = qint64(512) << 20;
    // Files of a series differ by a few bytes; a rounded size saves a new buffer for most of them.
    constexpr size_t granularity = size_t(64) << 10;
    size_ = 0;
    if (length < 0 || length > largestPart)
        return false;
    const size_t wanted = size_t(length);
    return wanted <= buffer_.size() || buffer_.allocate((wanted / granularity + 1) * granularity);
}

FileBytes::Result FileBytes::read(const QString& fileName, const FilePart& part) {
    size_ = 0;
    QFile file(fileName);
    if (!openPlainFile(file, QIODevice::ReadOnly | QIODevice::Unbuffered))
        return Result::CannotOpen;
    const auto [offset, length] = presentPart(part, file.size());
    if (!reserve(length))
        return Result::NoMemory;
    const size_t wanted = size_t(length);
    if (offset > 0 && !file.seek(offset))
        return Result::CannotOpen;
    while (size_ < wanted) {
        const qint64 count =
            file.read(reinterpret_cast<char*>(buffer_.data()) + size_, qint64(wanted - size_));
        if (count <= 0)
            break;
        size_ += size_t(count);
    }
    return Result::Done;
}
