// Notification of changes in folders, in place of polling.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringList>
#include <functional>
#include <memory>

/// Tells of what happens to the files of a few folders, not of their subfolders, while the thread
/// that made it processes events. It only ever saves time: changes by other machines on
/// a network mount are not reported, and nothing is once the system has run out of watches.
class FolderWatch {
public:
    virtual ~FolderWatch() = default;

    /// Watches these folders from now on, and no others; empty names are skipped. One that doesn't
    /// exist, or can't be watched, is tried again at the next call, which also finds out that a
    /// folder was replaced by another of its name. A folder whose watch begins is told at once as
    /// changed: its files may have come before.
    virtual void watch(const QStringList& folders) = 0;
};

/// `changed` is called when a file was created, renamed or deleted, and on Linux also when one was
/// written to, closed behind its writer, or given other permissions or times, or when some of that
/// may have been missed; at least once for any number of changes.
[[nodiscard]] std::unique_ptr<FolderWatch> makeFolderWatch(std::function<void()> changed);
