// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/file_writing.h"

#include <QFileInfo>
#include <QSaveFile>
#include <cstdarg>
#include <cstdio>
#include <filesystem>

#ifdef Q_OS_UNIX
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

bool forceOutData(int descriptor) {
    int result = 0;
    do {
#ifdef Q_OS_LINUX
        result = ::fdatasync(descriptor);
#else
        result = ::fsync(descriptor);
#endif
    } while (result != 0 && errno == EINTR);
    return result == 0 || errno == EINVAL || errno == ENOSYS || errno == ENOTSUP;
}

void forceOutFolder(const QString& folder) {
    const int descriptor =
        ::open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
        return;
    ::fsync(descriptor);
    ::close(descriptor);
}
#else
bool forceOutData(int) {
    return true;
}

void forceOutFolder(const QString&) {}
#endif

namespace {

bool isReplaceable(const QFileInfo& existing) {
    return !existing.exists() || (existing.isFile() && existing.isWritable());
}

/// To a file that must not be there yet. What can't be written whole is removed.
bool writeNewFile(const QString& path, const QByteArray& content) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::NewOnly))
        return false;
    bool written = file.write(content) == content.size() && file.flush();
    file.close();
    written = written && file.error() == QFileDevice::NoError;
    if (!written)
        file.remove();
    return written;
}

} // namespace

bool openToReplace(QSaveFile& file) {
    return isReplaceable(QFileInfo(file.fileName())) && file.open(QIODevice::WriteOnly);
}

bool commitFile(QSaveFile& file) {
    if (!file.flush() || !forceOutData(file.handle()))
        file.cancelWriting();
    if (!file.commit())
        return false;
    forceOutFolder(QFileInfo(file.fileName()).absolutePath());
    return true;
}

bool writeFileAtomically(const QString& path, const QByteArray& content) {
    QSaveFile file(path);
    return openToReplace(file) && file.write(content) == content.size() && commitFile(file);
}

bool writePolledFile(const QString& path, const QByteArray& content) {
    const QFileInfo existing(path);
    if (!isReplaceable(existing))
        return false;
    const QString target = existing.isSymLink() ? existing.symLinkTarget() : path;
    // What a crash leaves is replaced when the run is recovered. QTemporaryFile would make a file
    // that only its owner can read.
    const QString aside = target + ".part";
    QFile::remove(aside);
    if (!writeNewFile(aside, content))
        return false;
    std::error_code error;
    std::filesystem::rename(QFile::encodeName(aside).toStdString(),
                            QFile::encodeName(target).toStdString(), error);
    if (error)
        QFile::remove(aside);
    return !error;
}

QByteArray formatted(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    std::va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, arguments);
    va_end(arguments);
    QByteArray text(std::max(length, 0) + 1, '\0');
    std::vsnprintf(text.data(), size_t(text.size()), format, again);
    va_end(again);
    text.chop(1);
    return text;
}

bool appendToLog(const QString& path, const QByteArray& text, bool create) {
    // Opening a pipe or a device for writing can block or have an effect.
    const QFileInfo entry(path);
    if (entry.exists() && !entry.isFile())
        return false;
    QFile file(path);
    const QIODevice::OpenMode mode = create ? QIODevice::Truncate : QIODevice::Append;
    return file.open(QIODevice::WriteOnly | mode) && file.write(text) == text.size() &&
           file.flush();
}
