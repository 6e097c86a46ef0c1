// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/arrival.h"

#include "dicom_bytes.h"
#include "support/simulated_pump.h"

#include <QScopeGuard>
#include <QTemporaryDir>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// Rounds stand at 0, 100, 200, ... milliseconds; the last one is the first behind the time-out. The
// file has half of its size 200 milliseconds before it is whole.
TEST(AwaitFile, TakesAWholeFileAndLooksAtTheTimeOutBehindEachRound) {
    for (const auto& [timeOut, arrival, met, end] : {std::tuple{1000, 0, true, 30},
                                                     {1000, 1050, true, 1130},
                                                     {1000, 1150, false, 1100},
                                                     {0, 50, true, 130},
                                                     {0, 150, false, 100}}) {
        SCOPED_TRACE(testing::Message() << timeOut << ' ' << arrival);
        const QTemporaryDir folder;
        SimulatedPump pump;
        const QString path = folder.filePath("b");
        pump.after(arrival - 200, [&path] { writeFile(path, "half"); });
        pump.after(arrival, [&path] { writeFile(path, "half and half"); });
        pump.processEvents();
        const QString found =
            awaitFile({{folder.filePath("a"), path}, 13, true},
                      {.timeOutMilliseconds = timeOut, .settleMilliseconds = 30}, pump);
        EXPECT_EQ(found, met ? path : QString());
        EXPECT_EQ(pump.milliseconds(), end);
    }
}

// The superuser may read everything, so the test goes on as another user.
TEST(AwaitFile, WaitsForThePermissionToRead) {
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
    EXPECT_EQ(awaitFile({{path}, 5, true}, {.timeOutMilliseconds = 1000}, pump), QString(path));
    EXPECT_EQ(pump.milliseconds(), 310);
}

} // namespace
