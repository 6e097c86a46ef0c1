// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/file_writing.h"
#include "base/memory.h"
#include "base/plain_file.h"
#include "base/text_reading.h"
#include "support/files.h"

#include <QDir>
#include <QScopeGuard>
#include <QTemporaryDir>
#include <sys/inotify.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

void put(const QString& path, const QByteArray& content) {
    QDir().mkpath(path.left(path.lastIndexOf('/')));
    writeFile(path, content);
}

} // namespace

TEST(TextFile, AnythingButARegularFileIsNeitherReadNorReplaced) {
    const QTemporaryDir folder;
    const QString pipe = folder.filePath("pipe");
    ASSERT_EQ(mkfifo(pipe.toUtf8().constData(), 0600), 0);
    for (const QString& path : {pipe, folder.path(), QString("/dev/zero")}) {
        QString text;
        EXPECT_FALSE(readTextFile(path, text)) << path.toStdString();
        EXPECT_FALSE(writeFileAtomically(path, "x")) << path.toStdString();
        EXPECT_FALSE(writePolledFile(path, "x")) << path.toStdString();
    }
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::System | QDir::Files), QStringList("pipe"));
}

// Opening a device or a pipe can have an effect at its other end.
TEST(PlainFile, APipeIsNotEvenOpened) {
    const QTemporaryDir folder;
    const QByteArray pipe = folder.filePath("pipe").toLocal8Bit();
    ASSERT_EQ(mkfifo(pipe.constData(), 0600), 0);
    const int queue = inotify_init1(IN_NONBLOCK);
    const auto closed = qScopeGuard([queue] { close(queue); });
    ASSERT_GE(inotify_add_watch(queue, pipe.constData(), IN_OPEN), 0);
    EXPECT_FALSE(fileStamp(pipe));
    QFile file(pipe);
    EXPECT_FALSE(openPlainFile(file));
    std::array<char, 4096> events;
    EXPECT_LT(read(queue, events.data(), events.size()), 0);
}

TEST(TextFile, ALinkStaysAndItsTargetIsWritten) {
    const QTemporaryDir folder;
    put(folder.filePath("target"), "old");
    ASSERT_TRUE(QFile::link(folder.filePath("target"), folder.filePath("link")));
    ASSERT_TRUE(writeFileAtomically(folder.filePath("link"), "new"));
    EXPECT_EQ(contentOf(folder.filePath("target")), "new");
    ASSERT_TRUE(writePolledFile(folder.filePath("link"), "newer"));
    EXPECT_EQ(contentOf(folder.filePath("target")), "newer");
    EXPECT_TRUE(QFileInfo(folder.filePath("link")).isSymLink());
}

// Its reader may be another user's program, and may have the old file open.
TEST(PolledFile, IsReadableLikeAnyOtherAndReplacesWhatIsBeingRead) {
    const QTemporaryDir folder;
    const QString path = folder.filePath("value");
    put(path, "old and long");
    QFile reader(path);
    ASSERT_TRUE(reader.open(QIODevice::ReadOnly));
    put(path + ".part", "left by a crash");
    ASSERT_TRUE(writePolledFile(path, "new"));
    EXPECT_EQ(reader.readAll(), "old and long");
    EXPECT_EQ(contentOf(path), "new");
    put(folder.filePath("other"), "");
    EXPECT_EQ(QFile::permissions(path), QFile::permissions(folder.filePath("other")));
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files), QStringList({"other", "value"}));
}

TEST(AvailableMemory, IsTheSmallestOfSystemAndControlGroups) {
    const QTemporaryDir folder;
    const QString root = folder.path();
    EXPECT_EQ(availableMemoryBytes(root), std::numeric_limits<size_t>::max());
    put(root + "/proc/meminfo", "MemTotal:  900 kB\nMemAvailable:     800 kB\n");
    EXPECT_EQ(availableMemoryBytes(root), 800U * 1024);
    // The group of the process has no limit; the one around it has, and holds files in memory.
    put(root + "/proc/self/cgroup", "0::/slice/job\n");
    put(root + "/sys/fs/cgroup/slice/job/memory.max", "max\n");
    put(root + "/sys/fs/cgroup/slice/memory.max", "500000\n");
    put(root + "/sys/fs/cgroup/slice/memory.current", "400000\n");
    put(root + "/sys/fs/cgroup/slice/memory.stat", "inactive_file 30000\nactive_file 20000\n");
    EXPECT_EQ(availableMemoryBytes(root), 150000U);
}

// In a process of its own, which is left with the limit.
TEST(AvailableMemory, IsNoMoreThanTheAddressSpaceHasLeft) {
    const auto limitAndAsk = [] {
        QFile sizes("/proc/self/statm");
        if (!sizes.open(QIODevice::ReadOnly))
            std::_Exit(2);
        const size_t used =
            sizes.readAll().split(' ')[0].toULongLong() * size_t(::sysconf(_SC_PAGESIZE));
        constexpr size_t left = size_t(32) << 20;
        const rlimit limit{used + left, RLIM_INFINITY};
        const bool limited = ::setrlimit(RLIMIT_AS, &limit) == 0;
        std::_Exit(limited && availableMemoryBytes() <= left ? 0 : 1);
    };
    EXPECT_EXIT(limitAndAsk(), testing::ExitedWithCode(0), "");
}
