// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/journal/journal_output.h"

#include "base/file_writing.h"
#include "base/plain_file.h"

#include <QFile>
#include <QFileInfo>

#ifdef Q_OS_UNIX
#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace {

#ifdef Q_OS_UNIX

bool writeAll(QFile& file, std::span<const uint8_t> bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(file.handle(), bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return false;
        bytes = bytes.subspan(size_t(written));
    }
    return true;
}

/// A file that was removed with its folder takes bytes that nobody will find again.
bool isInAFolder(QFile& file) {
    struct stat status {};
    return ::fstat(file.handle(), &status) != 0 || status.st_nlink > 0;
}

/// False when another open file holds a lock that forbids this one. The system takes a lock away
/// when its program ends, whatever ends it. Where a file system has no locks, everybody gets one.
bool lockFile(QFile& file, int kind) {
    return ::flock(file.handle(), kind | LOCK_NB) == 0 || errno != EWOULDBLOCK;
}

bool lockToWrite(QFile& file) {
    return lockFile(file, LOCK_EX);
}

bool lockToLook(QFile& file) {
    return lockFile(file, LOCK_SH);
}

/// Nobody reads a journal while its run goes on, so what is on the disk needs no copy in memory.
/// The next volumes use the pages of the last ones again, which is faster than fresh ones, and
/// other programs keep theirs.
void forgetForcedOut(QFile& file) {
#ifdef POSIX_FADV_DONTNEED
    static_cast<void>(::posix_fadvise(file.handle(), 0, 0, POSIX_FADV_DONTNEED));
#else
    static_cast<void>(file);
#endif
}

#else

void forgetForcedOut(QFile&) {}

bool lockToWrite(QFile&) {
    return true;
}

bool lockToLook(QFile&) {
    return true;
}

bool writeAll(QFile& file, std::span<const uint8_t> bytes) {
    return file.write(reinterpret_cast<const char*>(bytes.data()), qint64(bytes.size())) ==
           qint64(bytes.size());
}

bool isInAFolder(QFile&) {
    return true;
}

#endif

class JournalFile : public JournalOutput {
public:
    explicit JournalFile(const QString& path) : file_(path) {}

    [[nodiscard]] bool create() {
        folderToForceOut_ = QFileInfo(file_.fileName()).absolutePath();
        return file_.open(QIODevice::WriteOnly | QIODevice::NewOnly | QIODevice::Unbuffered) &&
               lockToWrite(file_);
    }
    [[nodiscard]] bool openAndCut(qint64 keepBytes) {
        const std::optional<FileStamp> stamp = fileStamp(file_.fileName());
        return stamp && keepBytes >= 0 && keepBytes <= stamp->size &&
               file_.open(QIODevice::ReadWrite | QIODevice::ExistingOnly | QIODevice::Unbuffered) &&
               lockToWrite(file_) && file_.resize(keepBytes) && file_.seek(keepBytes);
    }
    bool write(std::span<const uint8_t> bytes) override { return writeAll(file_, bytes); }
    bool forceOut() override {
        if (!isInAFolder(file_) || !forceOutData(file_.handle()))
            return false;
        if (!folderToForceOut_.isEmpty())
            forceOutFolder(folderToForceOut_);
        folderToForceOut_.clear();
        forgetForcedOut(file_);
        return true;
    }

private:
    QFile file_;
    QString folderToForceOut_; ///< empty when that is done
};

} // namespace

std::unique_ptr<JournalOutput> createJournalFile(const QString& path) {
    auto file = std::make_unique<JournalFile>(path);
    return file->create() ? std::move(file) : nullptr;
}

std::unique_ptr<JournalOutput> continueJournalFile(const QString& path, qint64 keepBytes) {
    auto file = std::make_unique<JournalFile>(path);
    return file->openAndCut(keepBytes) ? std::move(file) : nullptr;
}

bool journalIsInUse(const QString& path) {
    QFile file(path);
    return openPlainFile(file) && !lockToLook(file);
}
