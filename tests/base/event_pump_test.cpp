// The pump of the running program, with real notifications of the system. A missed one shows as a
// long wait; no test depends on how soon one comes.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/event_pump.h"

#include "support/files.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTimer>
#include <functional>
#include <sys/resource.h>

namespace {

constexpr int longWait = 20000;

/// Takes what has been told until now, the beginning of the watch included.
void settle(QtEventPump& pump, const QStringList& folders) {
    while (pump.pumpWaitForChange(0, folders)) {
    }
}

} // namespace

TEST(QtEventPump, AWaitEndsWithAChangeOfItsFolders) {
    const QTemporaryDir folder;
    const QTemporaryDir other;
    const QStringList both{folder.path() + '/', other.path() + '/', QString()};
    QtEventPump pump;
    const StopWatch watch(pump);
    EXPECT_TRUE(pump.pumpWaitForChange(longWait, both)) << "files may have come before";
    EXPECT_FALSE(pump.pumpWaitForChange(0, both));
    QTimer::singleShot(20, [&] { writeFile(other.filePath("image"), ""); });
    EXPECT_TRUE(pump.pumpWaitForChange(longWait, both));
    // Between two waits.
    writeFile(folder.filePath("image"), "");
    EXPECT_TRUE(pump.pumpWaitForChange(longWait, both));
    EXPECT_LT(watch.elapsed(), longWait);
    // A folder that comes later.
    const QStringList later{folder.path() + "/later/"};
    settle(pump, both);
    EXPECT_FALSE(pump.pumpWaitForChange(0, later));
    ASSERT_TRUE(QDir(folder.path()).mkdir("later"));
    EXPECT_TRUE(pump.pumpWaitForChange(longWait, later));
    writeFile(folder.filePath("later/image"), "");
    EXPECT_TRUE(pump.pumpWaitForChange(longWait, later));
}

#ifdef Q_OS_LINUX

TEST(QtEventPump, AWaitEndsWhenAFileGrowsAndWhenItIsClosed) {
    const QTemporaryDir folder;
    const QStringList folders{folder.path() + '/'};
    QtEventPump pump;
    const StopWatch watch(pump);
    QFile file(folder.filePath("image"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    settle(pump, folders);
    QTimer::singleShot(20, [&] { file.write("image"); });
    EXPECT_TRUE(pump.pumpWaitForChange(longWait, folders));
    settle(pump, folders);
    QTimer::singleShot(20, [&] { file.close(); });
    EXPECT_TRUE(pump.pumpWaitForChange(longWait, folders));
    EXPECT_FALSE(pump.pumpWaitForChange(10, folders)) << "a closed file is still";
    EXPECT_LT(watch.elapsed(), longWait);
}

// Each time the old folder is another one than that of the path: gone, beside, or below another
// parent.
TEST(QtEventPump, AFolderThatIsReplacedIsWatchedAgain) {
    const QTemporaryDir top;
    const QDir place(top.path());
    const QStringList folders{top.filePath("exam/series/")};
    QtEventPump pump;
    const StopWatch watch(pump);
    const std::function<bool()> removals[] = {
        [&] { return QDir(folders[0]).removeRecursively(); },
        [&] { return QDir(top.filePath("exam")).rename("series", "old"); },
        [&] { return QDir(top.path()).rename("exam", "other"); }};
    for (const auto& remove : removals) {
        ASSERT_TRUE(place.mkpath("exam/series"));
        settle(pump, folders);
        ASSERT_TRUE(remove());
        settle(pump, folders);
        EXPECT_FALSE(pump.pumpWaitForChange(10, folders)) << "there is nothing to be told of";
        ASSERT_TRUE(place.mkpath("exam/series"));
        EXPECT_TRUE(pump.pumpWaitForChange(longWait, folders));
        settle(pump, folders);
        writeFile(folders[0] + "image", "");
        EXPECT_TRUE(pump.pumpWaitForChange(longWait, folders));
    }
    EXPECT_LT(watch.elapsed(), longWait);
}

TEST(QtEventPump, MoreChangesThanTheSystemKeepsAreAChange) {
    QFile limit("/proc/sys/fs/inotify/max_queued_events");
    ASSERT_TRUE(limit.open(QIODevice::ReadOnly));
    const int changes = limit.readAll().trimmed().toInt() + 1000;
    const QTemporaryDir folder;
    const QStringList folders{folder.path()};
    QtEventPump pump;
    const StopWatch watch(pump);
    settle(pump, folders);
    writeFile(folder.filePath("a"), "");
    for (int i = 0; i < changes / 2; ++i)
        ASSERT_TRUE(i % 2 == 0 ? QFile::rename(folder.filePath("a"), folder.filePath("b"))
                               : QFile::rename(folder.filePath("b"), folder.filePath("a")));
    EXPECT_TRUE(pump.pumpWaitForChange(longWait, folders));
    settle(pump, folders);
    writeFile(folder.filePath("image"), "");
    EXPECT_TRUE(pump.pumpWaitForChange(longWait, folders));
    EXPECT_LT(watch.elapsed(), longWait);
}

TEST(QtEventPump, WithoutFreeDescriptorsItWaitsAsIfNothingWereTold) {
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "the sanitizer needs descriptors to look at an object";
#endif
    const QTemporaryDir folder;
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &before), 0);
    rlimit none = before;
    none.rlim_cur = 3;
    QtEventPump pump;
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
    static_cast<void>(pump.pumpWaitForChange(10, {folder.path()}));
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &before), 0);
    const StopWatch watch(pump);
    EXPECT_FALSE(pump.pumpWaitForChange(30, {folder.path()}));
    EXPECT_GE(watch.elapsed(), 30);
}

#endif

TEST(QtEventPump, NoWaitLastsOnceWaitingIsGivenUp) {
    QtEventPump pump;
    const StopWatch watch(pump);
    QTimer::singleShot(20, [&] { pump.giveUpWaiting(); });
    pump.pumpWait(longWait);
    EXPECT_FALSE(pump.pumpWaitForChange(longWait, {}));
    EXPECT_LT(watch.elapsed(), longWait);
}

TEST(QtEventPump, APlainWaitIsNotCutShort) {
    const QTemporaryDir folder;
    QtEventPump pump;
    settle(pump, {folder.path()});
    writeFile(folder.filePath("image"), "");
    const StopWatch watch(pump);
    pump.pumpWait(40);
    EXPECT_GE(watch.elapsed(), 40);
}

// The ledger subtracts the time of events from a wait, which must not become negative.
TEST(QtEventPump, EventsInsideEventsAreCountedOnce) {
    QtEventPump pump;
    constexpr qint64 ofEach = 3000; // microseconds
    const auto work = [&pump] {
        const qint64 end = pump.microseconds() + ofEach;
        while (pump.microseconds() < end) {
        }
    };
    bool innerDone = false, outerDone = false;
    QTimer::singleShot(0, [&] {
        work();
        QTimer::singleShot(0, [&] {
            work();
            innerDone = true;
        });
        while (!innerDone)
            pump.processEvents();
        outerDone = true;
    });
    const qint64 start = pump.microseconds();
    while (!outerDone)
        pump.processEvents();
    EXPECT_GE(pump.eventTime(), 2 * ofEach);
    EXPECT_LE(pump.eventTime(), pump.microseconds() - start);
}
