// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/folder_watch.h"

#include <QFileSystemWatcher>
#include <utility>

#ifdef Q_OS_LINUX
#include "base/inotify_watch.h"
#endif

namespace {

/// What every system has. It doesn't tell of the growth and the closing of a file.
class PortableWatch : public FolderWatch {
public:
    explicit PortableWatch(std::function<void()> changed) : changed_(std::move(changed)) {
        QObject::connect(&watcher_, &QFileSystemWatcher::directoryChanged, &watcher_,
                         [this] { changed_(); });
    }

    void watch(const QStringList& folders) override {
        for (const QString& folder : watcher_.directories())
            if (!folders.contains(folder))
                watcher_.removePath(folder);
        for (const QString& folder : folders)
            if (!folder.isEmpty() && !watcher_.directories().contains(folder) &&
                watcher_.addPath(folder))
                changed_();
    }

private:
    std::function<void()> changed_;
    QFileSystemWatcher watcher_;
};

} // namespace

std::unique_ptr<FolderWatch> makeFolderWatch(std::function<void()> changed) {
#ifdef Q_OS_LINUX
    if (auto watch = InotifyWatch::make(changed))
        return watch;
#endif
    return std::make_unique<PortableWatch>(std::move(changed));
}
