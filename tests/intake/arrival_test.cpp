// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/arrival.h"

#include "dicom_bytes.h"
#include "support/simulated_pump.h"

#include <QDateTime>
#include <QScopeGuard>
#include <QTemporaryDir>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// Rounds stand at 0, 100, 200, ... milliseconds; the last one is the first behind the time-out. The
// file has half of its size 200 milliseconds before it is whole.
TEST(ArrivalWatch, TakesAWholeFileAndLooksAtTheTimeOutBehindEachRound) {
    const std::tuple<int, int, bool, int> cases[] = {{1000, 0, true, 30},
                                                     {1000, 1050, true, 1130},
                                                     {1000, 1150, false, 1100},
                                                     {0, 50, true, 130},
                                                     {0, 150, false, 100}};
    for (const auto& [timeOut, arrival, met, end] : cases) {
        SCOPED_TRACE(testing::Message() << timeOut << ' ' << arrival);
        const QTemporaryDir folder;
        SimulatedPump pump;
        const QString path = folder.filePath("b");
        pump.after(arrival - 200, [&path] { writeFile(path, "half"); });
        pump.after(arrival, [&path] { writeFile(path, "half and half"); });
        pump.processEvents();
        const auto [found, noticedAt] =
            ArrivalWatch(pump).await({{folder.filePath("a"), path}, 13, true},
                                     {.timeOutMilliseconds = timeOut, .settleMilliseconds = 30});
        EXPECT_EQ(found, met ? path : QString());
        EXPECT_EQ(noticedAt, met ? end - 30 : 0) << "seen before it settled";
        EXPECT_EQ(pump.milliseconds(), end);
    }
}

// Written in place at one size, and stamped so that no two writes fall into one tick of the clock.
void overwrite(const QString& path, const QByteArray& bytes, int second) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
    ASSERT_TRUE(file.flush() && file.setFileTime(QDateTime::fromSecsSinceEpoch(second),
                                                 QFileDevice::FileModificationTime));
}

// The first look is at 0 milliseconds, the settling time 30.
TEST(ArrivalWatch, SizeAndTimesHoldStillOverTheSettlingTime) {
    const std::tuple<int, bool, bool, int> cases[] = {
        {0, false, false, 30},   {25, false, false, 60},   {25, true, false, 55},
        {85, false, false, 120}, {85, true, false, 115},   {2000, false, false, 1050},
        {85, false, true, 30},   {2000, true, false, 1045}};
    for (const auto& [lastWrite, told, keepsGrowing, end] : cases) {
        const QTemporaryDir folder;
        SimulatedPump pump;
        const QString path = folder.filePath("image");
        overwrite(path, "0000", 1);
        for (int time = 25; time <= lastWrite; time += 30)
            pump.after(time, [&pump, &path, time, told = told] {
                overwrite(path, "full", time);
                if (told)
                    pump.changeFolders();
            });
        const QString found = ArrivalWatch(pump)
                                  .await({{path}, 4, true, keepsGrowing},
                                         {.timeOutMilliseconds = 1000, .settleMilliseconds = 30})
                                  .name;
        EXPECT_EQ(found, lastWrite < 1000 ? path : QString());
        EXPECT_EQ(pump.milliseconds(), end) << lastWrite;
    }
}

// Answered a minute later, while a wait goes on: in its pause, or while the file settles.
TEST(ArrivalWatch, ABoxThatHoldsUpTheEventsIsNoTimeOut) {
    for (const int opened : {50, 110}) {
        const QTemporaryDir folder;
        SimulatedPump pump;
        const QString path = folder.filePath("image");
        pump.after(60, [&path] { overwrite(path, "full", 1); });
        pump.after(20'000, [&path] { overwrite(path, "FULL", 2); });
        pump.after(opened, [&pump] { pump.pumpWait(60'000); });
        const ArrivedFile found = ArrivalWatch(pump).await(
            {{path}, 4, true}, {.timeOutMilliseconds = 1000, .settleMilliseconds = 30});
        EXPECT_EQ(found.name, path) << opened;
    }
}

// Rounds stand at 0 and 100 milliseconds, settling at 30; half of the file comes at 42.
TEST(ArrivalWatch, AChangeOfTheFolderBringsTheNextRoundsForward) {
    for (const auto& [told, whole, end] :
         {std::tuple{true, 42, 72}, {true, 55, 92}, {true, 139, 172}, {false, 55, 130}}) {
        const QTemporaryDir folder;
        SimulatedPump pump;
        const QString path = folder.filePath("image");
        pump.after(42, [&pump, &path, told = told] {
            writeFile(path, "half");
            if (told)
                pump.changeFolders();
        });
        pump.after(whole, [&path] { writeFile(path, "half and half"); });
        EXPECT_EQ(
            ArrivalWatch(pump)
                .await({{path}, 13, true}, {.timeOutMilliseconds = 1000, .settleMilliseconds = 30})
                .name,
            path);
        EXPECT_EQ(pump.milliseconds(), end) << told << whole;
        EXPECT_EQ(pump.watchedFolders(), QStringList{folder.path() + '/'});
    }
}

/// Changes are told at each wait before any time has passed.
class RestlessPump : public SimulatedPump {
public:
    int nrOfChanges = 0;

    bool pumpWaitForChange(int, const QStringList&) override {
        constexpr int farTooMany = 10'000;
        if (++nrOfChanges > farTooMany)
            giveUpWaiting();
        return true;
    }
};

// One that has not come, and one that is there and never still: two rounds in 2 milliseconds.
TEST(ArrivalWatch, AFolderThatChangesAllTheTimeMakesNoBusyLoop) {
    const QTemporaryDir folder;
    const QString growing = folder.filePath("image");
    for (const QString& path : {QString("/none/image"), growing}) {
        RestlessPump pump;
        for (int time = 1; time < 1100; time += 2)
            pump.after(time, [&growing, time] { overwrite(growing, "full", time); });
        EXPECT_EQ(ArrivalWatch(pump).await({{path}, 1, true}, {.timeOutMilliseconds = 1000}).name,
                  "");
        EXPECT_GE(pump.nrOfChanges, 980);
        EXPECT_LE(pump.nrOfChanges, 1020);
    }
}

// Slices 0 to 2 are there at 0 milliseconds, slice 3 comes at 4. Slice 1 is written again at 6,
// which nobody tells; it is seen when slice 0 has settled.
TEST(ArrivalWatch, FilesOfOneVolumeSettleTogether) {
    const QTemporaryDir folder;
    const auto path = [&folder](int slice) { return folder.filePath(QString::number(slice)); };
    SimulatedPump pump;
    for (int slice = 0; slice < 3; ++slice)
        overwrite(path(slice), "full", 1);
    pump.after(4, [&] {
        overwrite(path(3), "full", 1);
        pump.changeFolders();
    });
    pump.after(6, [&] { overwrite(path(1), "FULL", 2); });
    ArrivalWatch watch(pump);
    constexpr std::pair<int, int> expected[] = {{0, 10}, {10, 20}, {0, 20}, {4, 20}};
    for (int slice = 0; slice < 4; ++slice) {
        const ArrivedFile found =
            watch.await({{path(slice)}, 4, true}, {.timeOutMilliseconds = 1000},
                        [&](int step) { return QStringList{path(slice + 1 + step)}; });
        EXPECT_EQ(found.name, path(slice));
        EXPECT_EQ(std::pair(int(found.noticedAt), int(pump.milliseconds())), expected[slice])
            << slice;
    }
}

// The system tells who reads a folder. Rounds stand at 0, 100, 200, ... milliseconds.
TEST(ArrivalWatch, TheFolderIsReadInEachRoundFromASecondOn) {
    const QTemporaryDir folder;
    const int queue = inotify_init1(IN_NONBLOCK);
    const auto closed = qScopeGuard([queue] { close(queue); });
    ASSERT_GE(inotify_add_watch(queue, folder.path().toLocal8Bit().constData(), IN_ACCESS), 0);
    SimulatedPump pump;
    std::vector<bool> readings;
    for (int time = 950; time < 1400; time += 100)
        pump.after(time, [&] {
            std::array<char, 4096> events;
            readings.push_back(read(queue, events.data(), events.size()) > 0);
        });
    const QString path = folder.filePath("image");
    pump.after(1310, [&path] { writeFile(path, "image"); });
    EXPECT_EQ(ArrivalWatch(pump).await({{path}, 5, true}, {.timeOutMilliseconds = 5000}).name,
              path);
    EXPECT_EQ(readings, (std::vector<bool>{false, false, true, true, true}));
}

// The superuser may read everything, so the test goes on as another user.
TEST(ArrivalWatch, WaitsForThePermissionToRead) {
    const QTemporaryDir folder;
    const QByteArray path = folder.filePath("image").toLocal8Bit();
    writeFile(path, "image");
    ASSERT_EQ(chmod(folder.path().toLocal8Bit().constData(), 0755), 0);
    constexpr uid_t nobody = 65534;
    const auto backAgain = qScopeGuard([user = geteuid()] { EXPECT_EQ(seteuid(user), 0); });
    if (geteuid() == 0) {
        ASSERT_EQ(chown(path.constData(), nobody, gid_t(-1)), 0);
        ASSERT_EQ(seteuid(nobody), 0);
    }
    ASSERT_EQ(chmod(path.constData(), 0), 0);
    SimulatedPump pump;
    pump.after(250, [&path] { chmod(path.constData(), 0644); });
    EXPECT_EQ(ArrivalWatch(pump).await({{path}, 5, true}, {.timeOutMilliseconds = 1000}).name,
              QString(path));
    EXPECT_EQ(pump.milliseconds(), 310);
}

} // namespace
