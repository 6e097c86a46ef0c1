// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/folder_lock.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QFile>
#include <QSysInfo>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

class FolderLockTest : public testing::Test {
protected:
    const QTemporaryDir folder_;
    QFile mark_{folder_.filePath("velo-cortivo.lock")};
    FolderLock first_;
    FolderLock second_;
};

TEST_F(FolderLockTest, OneHoldsAFolderAtATime) {
    ASSERT_TRUE(first_.take(folder_.path()));
    EXPECT_FALSE(second_.take(folder_.path() + '/'));
    EXPECT_EQ(second_.holder(), QString("process %1 on host %2")
                                    .arg(QCoreApplication::applicationPid())
                                    .arg(QSysInfo::machineHostName()));
    EXPECT_FALSE(second_.takeOver(folder_.path())) << "the first one works still";
    second_.release();
    EXPECT_TRUE(mark_.exists());
    first_.release();
    EXPECT_FALSE(mark_.exists());
    const QTemporaryDir other;
    EXPECT_TRUE(second_.take(folder_.path()) && second_.take(other.path()));
    EXPECT_TRUE(first_.take(folder_.path())) << "left for the other folder";
    for (const QString& place : {folder_.filePath("none"), QString("/proc")})
        EXPECT_TRUE(first_.take(place) && second_.take(place)) << "no place for the mark";
}

TEST_F(FolderLockTest, TheMarkOfAProgramThatHasGoneIsReplaced) {
    // A plain fork: behind a child that shares the memory for a moment, as QProcess makes one, the
    // thread sanitizer takes all that threads do for races.
    const pid_t gone = fork();
    if (gone == 0)
        _exit(0);
    ASSERT_TRUE(gone > 0 && waitpid(gone, nullptr, 0) == gone);
    const QByteArray process = QByteArray::number(gone);
    ASSERT_TRUE(first_.take(folder_.path()) && mark_.open(QIODevice::ReadOnly));
    QByteArrayList lines = mark_.readAll().split('\n'); // process, program, host, its number
    lines[0] = process;
    mark_.close();
    for (const bool isElsewhere : {false, true}) {
        first_.release();
        if (isElsewhere) { // of another computer nobody can tell
            lines[2] = "elsewhere";
            lines[3] = "another computer";
        }
        // Long ago, as at the start of a long run.
        ASSERT_TRUE(mark_.open(QIODevice::WriteOnly) && mark_.write(lines.join('\n')) > 0 &&
                    mark_.flush() &&
                    mark_.setFileTime(QDateTime::fromSecsSinceEpoch(1000),
                                      QFileDevice::FileModificationTime));
        mark_.close();
        EXPECT_EQ(first_.take(folder_.path()), !isElsewhere);
    }
    EXPECT_EQ(first_.holder(), "process " + process + " on host elsewhere");
    EXPECT_TRUE(first_.takeOver(folder_.path()));
    EXPECT_FALSE(second_.take(folder_.path()));
}
