// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/plain_file.h"

#include <QFileInfo>

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#else
#include <QDateTime>
#endif

bool fileExists(const QString& path) {
    return QFileInfo(path).isFile();
}

#ifdef Q_OS_UNIX

namespace {

std::optional<struct stat> statusOf(int descriptor) {
    struct stat status {};
    if (::fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode))
        return std::nullopt;
    return status;
}

qint64 nanoseconds(const timespec& time) {
    return qint64(time.tv_sec) * 1'000'000'000 + time.tv_nsec;
}

/// -1 when it can't be opened or is not a regular file.
int openDescriptor(const QString& path) {
    // Opening a device can have an effect, so the directory entry is checked first.
    const QFileInfo entry(path);
    if (path.isEmpty() || (entry.exists() && !entry.isFile()))
        return -1;
    const int descriptor =
        ::open(QFile::encodeName(path).constData(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (descriptor < 0 || statusOf(descriptor))
        return descriptor;
    ::close(descriptor);
    return -1;
}

} // namespace

bool openPlainFile(QFile& file, QIODevice::OpenMode mode) {
    if (file.fileName().startsWith(
            ":/")) // a resource of the program, of which there is no descriptor
        return file.open(mode);
    const int descriptor = openDescriptor(file.fileName());
    if (descriptor < 0)
        return false;
    if (file.open(descriptor, mode, QFileDevice::AutoCloseHandle))
        return true;
    ::close(descriptor);
    return false;
}

std::optional<FileStamp> fileStamp(const QString& path) {
    const int descriptor = openDescriptor(path);
    if (descriptor < 0)
        return std::nullopt;
    const std::optional<struct stat> status = statusOf(descriptor);
    ::close(descriptor);
    if (!status)
        return std::nullopt;
    return FileStamp{status->st_size, nanoseconds(status->st_mtim), nanoseconds(status->st_ctim)};
}

#else

bool openPlainFile(QFile& file, QIODevice::OpenMode mode) {
    const QFileInfo entry(file.fileName());
    return !(entry.exists() && !entry.isFile()) && file.open(mode);
}

std::optional<FileStamp> fileStamp(const QString& path) {
    constexpr qint64 nanosecondsPerMillisecond = 1'000'000;
    QFile file(path);
    if (path.isEmpty() || !openPlainFile(file, QIODevice::ReadOnly | QIODevice::Unbuffered))
        return std::nullopt;
    const auto timeOf = [&file](QFileDevice::FileTime time) {
        return file.fileTime(time).toMSecsSinceEpoch() * nanosecondsPerMillisecond;
    };
    return FileStamp{file.size(), timeOf(QFileDevice::FileModificationTime),
                     timeOf(QFileDevice::FileMetadataChangeTime)};
}

#endif
