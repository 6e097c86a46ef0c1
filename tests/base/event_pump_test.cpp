// The pump of the running program, with real notifications of the system. A missed one shows as a
// long wait; no test depends on how soon one comes.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/event_pump.h"

#include "support/files.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTimer>

namespace {

constexpr int longWait = 20000;

} // namespace

TEST(QtEventPump, AWaitEndsWithAChangeOfItsFolders) {
    const QTemporaryDir folder;
    const QTemporaryDir other;
    const QStringList both{folder.path() + '/', other.path() + '/', QString()};
    QtEventPump pump;
    const StopWatch watch(pump);
    QTimer::singleShot(20, [&] { writeFile(other.filePath("image"), ""); });
    EXPECT_TRUE(pump.pumpWaitForChange(longWait, both));
    // Between two waits.
    writeFile(folder.filePath("image"), "");
    EXPECT_TRUE(pump.pumpWaitForChange(longWait, both));
    EXPECT_LT(watch.elapsed(), longWait);
    // A folder that comes later.
    const QStringList later{folder.path() + "/later/"};
    EXPECT_FALSE(pump.pumpWaitForChange(0, later));
    ASSERT_TRUE(QDir(folder.path()).mkdir("later"));
    EXPECT_FALSE(pump.pumpWaitForChange(10, later));
    writeFile(folder.filePath("later/image"), "");
    EXPECT_TRUE(pump.pumpWaitForChange(longWait, later));
}

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
    EXPECT_FALSE(pump.pumpWaitForChange(0, {folder.path()}));
    writeFile(folder.filePath("image"), "");
    const StopWatch watch(pump);
    pump.pumpWait(40);
    EXPECT_GE(watch.elapsed(), 40);
}
