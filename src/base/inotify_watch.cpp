// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/inotify_watch.h"

#include <QFile>
#include <array>
#include <cerrno>
#include <cstring>
#include <sys/inotify.h>
#include <unistd.h>

namespace {

/// Reading is left out: the program itself reads the files. A file that was created, grew and was
/// closed gives one notice at least of each.
constexpr uint32_t kinds = IN_CREATE | IN_MODIFY | IN_CLOSE_WRITE | IN_ATTRIB | IN_MOVED_TO |
                           IN_MOVED_FROM | IN_DELETE | IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR;

} // namespace

std::unique_ptr<InotifyWatch> InotifyWatch::make(std::function<void()> changed) {
    const int queue = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    if (queue < 0)
        return nullptr;
    return std::unique_ptr<InotifyWatch>(new InotifyWatch(queue, std::move(changed)));
}

InotifyWatch::InotifyWatch(int queue, std::function<void()> changed)
    : queue_(queue), changed_(std::move(changed)), notifier_(queue, QSocketNotifier::Read) {
    QObject::connect(&notifier_, &QSocketNotifier::activated, &notifier_,
                     [this] { takeNotices(); });
}

InotifyWatch::~InotifyWatch() {
    notifier_.setEnabled(false);
    ::close(queue_);
}

void InotifyWatch::watch(const QStringList& folders) {
    for (auto entry = numbers_.begin(); entry != numbers_.end();) {
        if (folders.contains(entry->first)) {
            ++entry;
            continue;
        }
        leave(entry->second);
        entry = numbers_.erase(entry);
    }
    for (const QString& folder : folders)
        if (!folder.isEmpty())
            watchFolder(folder);
}

// Asked for anew each time: a folder that is watched already keeps its number, and one that took
// the place of another, also by a change further up in its path, gets one of its own. The system
// doesn't give a number twice while the program runs.
void InotifyWatch::watchFolder(const QString& folder) {
    const int number = ::inotify_add_watch(queue_, QFile::encodeName(folder).constData(), kinds);
    const auto known = numbers_.find(folder);
    const int before = known == numbers_.end() ? -1 : known->second;
    if (number == before)
        return;
    if (before >= 0) {
        leave(before);
        numbers_.erase(known);
    }
    if (number < 0)
        return;
    numbers_[folder] = number;
    changed_();
}

// Fails where the folder is gone, and its watch with it.
void InotifyWatch::leave(int number) const {
    static_cast<void>(::inotify_rm_watch(queue_, number));
}

// Reads a bounded number of notices, so that a folder that changes all the time can't hold up the
// events; the rest comes with the next one. When the queue ran over, its last notice says so and
// counts as a change, as any other.
void InotifyWatch::takeNotices() {
    constexpr int mostReads = 16;
    alignas(inotify_event) std::array<char, 8192> notices{};
    for (int i = 0; i < mostReads; ++i) {
        const ssize_t length = ::read(queue_, notices.data(), notices.size());
        if (length <= 0) {
            // Anything else would be told again and again: from here on the caller polls.
            if (length == 0 || (errno != EAGAIN && errno != EINTR))
                notifier_.setEnabled(false);
            return;
        }
        inotify_event notice{};
        for (size_t at = 0; at + sizeof notice <= size_t(length);
             at += sizeof notice + notice.len) {
            std::memcpy(&notice, notices.data() + at, sizeof notice);
            if ((notice.mask & IN_IGNORED) == 0) // a watch has ended: nothing has changed
                changed_();
        }
    }
}
