// Folders watched by the kernel of Linux.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/folder_watch.h"

#include <QSocketNotifier>
#include <map>

class InotifyWatch : public FolderWatch {
public:
    /// Null when the system grants no further queue of notices.
    [[nodiscard]] static std::unique_ptr<InotifyWatch> make(std::function<void()> changed);
    ~InotifyWatch() override;
    InotifyWatch(const InotifyWatch&) = delete;
    InotifyWatch& operator=(const InotifyWatch&) = delete;

    void watch(const QStringList& folders) override;

private:
    InotifyWatch(int queue, std::function<void()> changed);
    void watchFolder(const QString& folder);
    void leave(int number) const;
    void takeNotices();

    int queue_; ///< descriptor, closed by the destructor
    std::function<void()> changed_;
    std::map<QString, int> numbers_; ///< of the watches, by folder
    QSocketNotifier notifier_;
};
