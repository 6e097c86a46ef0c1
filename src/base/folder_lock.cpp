// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/folder_lock.h"

#include "base/paths.h"

#include <QFileInfo>

namespace {

// The path stays right when the current folder changes.
std::unique_ptr<QLockFile> lockOf(const QString& folder) {
    auto lock = std::make_unique<QLockFile>(
        QFileInfo(paths::join(folder, "velo-cortivo.lock")).absoluteFilePath());
    lock->setStaleLockTime(0);
    return lock;
}

QString holderOf(const QLockFile& lock) {
    qint64 process = 0;
    QString host;
    QString program;
    return lock.getLockInfo(&process, &host, &program)
               ? QStringLiteral("process %1 on host %2").arg(QString::number(process), host)
               : QStringLiteral("an unknown process");
}

} // namespace

bool FolderLock::take(const QString& folder) {
    release();
    holder_.clear();
    std::unique_ptr<QLockFile> lock = lockOf(folder);
    if (lock->tryLock(0))
        lock_ = std::move(lock);
    else if (lock->error() == QLockFile::LockFailedError)
        holder_ = holderOf(*lock);
    return holder_.isEmpty();
}

bool FolderLock::takeOver(const QString& folder) {
    // Fails while the other program has the file open, as far as this computer can see.
    static_cast<void>(lockOf(folder)->removeStaleLockFile());
    return take(folder);
}
