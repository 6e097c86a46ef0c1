// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/memory.h"

#include <QByteArray>
#include <QFile>
#include <limits>

#ifdef Q_OS_UNIX
#include <sys/resource.h>
#include <unistd.h>
#endif
#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace {

constexpr size_t noLimit = std::numeric_limits<size_t>::max();

QByteArray contentOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// The number after a key at the start of a line; `otherwise` without one.
size_t numberOf(const QByteArray& text, const QByteArray& key, size_t otherwise) {
    for (const QByteArray& line : text.split('\n')) {
        const QList<QByteArray> words = line.simplified().split(' ');
        if (words.size() >= 2 && words[0] == key)
            return words[1].toULongLong();
    }
    return otherwise;
}

/// What is left below the limit of one control group.
size_t leftInGroup(const QString& folder, bool unified) {
    const char* const limitFile = unified ? "/memory.max" : "/memory.limit_in_bytes";
    const char* const usageFile = unified ? "/memory.current" : "/memory.usage_in_bytes";
    bool hasLimit = false; // the word "max" stands for none
    const size_t limit = contentOf(folder + limitFile).trimmed().toULongLong(&hasLimit);
    if (!hasLimit)
        return noLimit;
    const size_t usage = contentOf(folder + usageFile).trimmed().toULongLong();
    // Cached files count as used, but are evicted on demand.
    const QByteArray statistics = contentOf(folder + "/memory.stat");
    const QByteArray prefix = unified ? "" : "total_";
    const size_t files = numberOf(statistics, prefix + "inactive_file", 0) +
                         numberOf(statistics, prefix + "active_file", 0);
    const size_t held = usage - std::min(files, usage);
    return limit - std::min(held, limit);
}

/// What the control groups of this process and all groups around them leave.
size_t leftInGroups(const QString& root) {
    size_t left = noLimit;
    for (const QByteArray& line : contentOf(root + "/proc/self/cgroup").split('\n')) {
        // number:controllers:path; the unified hierarchy names no controllers
        const QList<QByteArray> parts = line.split(':');
        if (parts.size() < 3)
            continue;
        const bool unified = parts[1].isEmpty();
        if (!unified && !parts[1].split(',').contains("memory"))
            continue;
        const QString mount = root + (unified ? "/sys/fs/cgroup" : "/sys/fs/cgroup/memory");
        QString path = QString::fromUtf8(parts[2]);
        left = std::min(left, leftInGroup(mount + path, unified));
        while (!path.isEmpty()) {
            path.truncate(std::max(path.lastIndexOf('/'), qsizetype(0)));
            left = std::min(left, leftInGroup(mount + path, unified));
        }
    }
    return left;
}

#ifdef Q_OS_UNIX
/// What is left below the limit of the address space.
size_t leftOfAddressSpace(const QString& root) {
    rlimit limit{};
    if (::getrlimit(RLIMIT_AS, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY)
        return noLimit;
    const QByteArray pages = contentOf(root + "/proc/self/statm").split(' ').value(0);
    const size_t used = pages.toULongLong() * size_t(::sysconf(_SC_PAGESIZE));
    return size_t(limit.rlim_cur) - std::min(used, size_t(limit.rlim_cur));
}
#else
size_t leftOfAddressSpace(const QString&) {
    return noLimit;
}
#endif

} // namespace

size_t availableMemoryBytes(const QString& root) {
    constexpr size_t kilobyte = 1024;
    const size_t free = numberOf(contentOf(root + "/proc/meminfo"), "MemAvailable:", noLimit);
    return std::min({free < noLimit / kilobyte ? free * kilobyte : noLimit, leftInGroups(root),
                     leftOfAddressSpace(root)});
}

void returnFreedMemory() {
#ifdef __GLIBC__
    ::malloc_trim(0);
#endif
}

bool memoryIsAvailable(size_t count, size_t size) {
    if (count > std::numeric_limits<size_t>::max() / 2 / size)
        return false;
    // Looking the figure up costs some file accesses; small requests don't need it.
    constexpr size_t smallRequest = size_t(16) << 20;
    return count * size <= smallRequest || count * size <= availableMemoryBytes();
}
