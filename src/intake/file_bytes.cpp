// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/file_bytes.h"

#include <QFile>
#include <QFileInfo>

FileBytes::Result FileBytes::read(const QString& fileName) {
    constexpr qint64 largestFile = qint64(512) << 20;
    // Files of a series differ by a few bytes; a rounded size spares most of them a new buffer.
    constexpr size_t granularity = size_t(64) << 10;
    size_ = 0;
    QFile file(fileName);
    // Opening anything but a plain file may block.
    if (!QFileInfo(fileName).isFile() || !file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return Result::CannotOpen;
    if (file.size() > largestFile)
        return Result::NoMemory;
    const size_t wanted = size_t(file.size());
    if (wanted > buffer_.size() && !buffer_.allocate((wanted / granularity + 1) * granularity))
        return Result::NoMemory;
    while (size_ < wanted) {
        const qint64 count =
            file.read(reinterpret_cast<char*>(buffer_.data()) + size_, qint64(wanted - size_));
        if (count <= 0)
            break;
        size_ += size_t(count);
    }
    return Result::Done;
}
