// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/folder_lock.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QFile>
#include <QProcess>
#include <QSysInfo>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

qint64 processThatHasGone() {
    QProcess process;
    process.start("true", QStringList());
    EXPECT_TRUE(process.waitForStarted());
    const qint64 id = process.processId();
    EXPECT_TRUE(process.waitForFinished());
    return id;
}

} // namespace

TEST(FolderLock, OneHoldsAFolderAtATime) {
    const QTemporaryDir folder;
    const QString mark = folder.filePath("velo-cortivo.lock");
    FolderLock first;
    FolderLock second;
    ASSERT_TRUE(first.take(folder.path()));
    EXPECT_FALSE(second.take(folder.path() + '/'));
    EXPECT_EQ(second.holder(), QString("process %1 on host %2")
                                   .arg(QCoreApplication::applicationPid())
                                   .arg(QSysInfo::machineHostName()));
    EXPECT_FALSE(second.takeOver(folder.path())) << "the first one works still";
    second.release();
    EXPECT_TRUE(QFile::exists(mark));
    first.release();
    EXPECT_FALSE(QFile::exists(mark));
    EXPECT_TRUE(second.take(folder.path()));
    const QTemporaryDir other;
    EXPECT_TRUE(second.take(other.path()));
    EXPECT_TRUE(first.take(folder.path())) << "left for the other folder";
}

TEST(FolderLock, WithoutAPlaceForTheMarkNothingIsHeld) {
    const QTemporaryDir folder;
    for (const QString& place : {folder.filePath("none"), QString("/proc")}) {
        FolderLock first;
        FolderLock second;
        EXPECT_TRUE(first.take(place) && second.take(place)) << place.toStdString();
    }
}

TEST(FolderLock, TheMarkOfAProgramThatHasGoneIsReplaced) {
    const QTemporaryDir folder;
    QFile mark(folder.filePath("velo-cortivo.lock"));
    FolderLock lock;
    ASSERT_TRUE(lock.take(folder.path()) && mark.open(QIODevice::ReadOnly));
    QByteArrayList lines = mark.readAll().split('\n'); // process, program, host, its number
    mark.close();
    lock.release();
    lines[0] = QByteArray::number(processThatHasGone());
    const auto leaveMark = [&] {
        ASSERT_TRUE(mark.open(QIODevice::WriteOnly));
        mark.write(lines.join('\n'));
        // Long ago, as at the start of a long run.
        ASSERT_TRUE(mark.flush() && mark.setFileTime(QDateTime::fromSecsSinceEpoch(1000),
                                                     QFileDevice::FileModificationTime));
        mark.close();
    };
    leaveMark();
    EXPECT_TRUE(lock.take(folder.path()));
    lock.release();
    // Of another computer nobody can tell.
    lines[2] = "elsewhere";
    lines[3] = "another computer";
    leaveMark();
    EXPECT_FALSE(lock.take(folder.path()));
    EXPECT_EQ(lock.holder().toStdString(),
              "process " + lines[0].toStdString() + " on host elsewhere");
    EXPECT_TRUE(lock.takeOver(folder.path()));
    FolderLock other;
    EXPECT_FALSE(other.take(folder.path()));
}
