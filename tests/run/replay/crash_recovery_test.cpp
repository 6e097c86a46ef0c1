// Runs that end in their middle, and what comes back of them.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/replay/crash_trial.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QProcess>
#include <random>

namespace {

constexpr char victimFolder[] = "VELO_TRIAL_FOLDER";
constexpr char volumeMark = '#';

/// The run in a process of its own is killed after this time; a negative one lets it end. Gives the
/// number of volumes that it had read, and how long it took from the first.
std::pair<int, qint64> killAfter(const QString& folder, qint64 microseconds) {
    QProcess victim;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(victimFolder, folder);
    environment.remove("GTEST_OUTPUT");
    victim.setProcessEnvironment(environment);
    victim.start(QCoreApplication::applicationFilePath(),
                 {"--gtest_filter=CrashVictim.*", "--gtest_also_run_disabled_tests"});
    constexpr int patience = 60000;
    QByteArray output;
    while (!output.contains(volumeMark) && victim.waitForReadyRead(patience))
        output += victim.readAllStandardOutput();
    QElapsedTimer sinceFirst;
    sinceFirst.start();
    if (microseconds >= 0) {
        // The moment is random; nothing else depends on it.
        while (sinceFirst.nsecsElapsed() < microseconds * 1000)
            victim.waitForReadyRead(0);
        victim.kill();
    }
    EXPECT_TRUE(victim.state() == QProcess::NotRunning || victim.waitForFinished(patience));
    const qint64 duration = sinceFirst.nsecsElapsed() / 1000;
    output += victim.readAllStandardOutput();
    return {int(output.count(volumeMark)), duration};
}

} // namespace

// It tells of each volume that it has read.
TEST(CrashVictim, DISABLED_Runs) {
    QtEventPump pump;
    ProbeDisplay display;
    RunSession session(pump, display);
    session.keepsJournals = true;
    ProbeListener listener(session.listeners, ListenerPlace::Dialogs);
    operate(listener, session);
    listener.onBeforeVolume = [](int) {
        std::fputc(volumeMark, stdout);
        std::fflush(stdout);
        return true;
    };
    CrashTrial::prepare(session, qEnvironmentVariable(victimFolder));
    CrashTrial::followRegions(session);
    session.runButtonPressed();
}

class KilledRun : public testing::TestWithParam<int> {};

TEST_P(KilledRun, IsRecoveredAsIfItHadBeenStoppedThere) {
    CrashTrial trial(trialKinds[GetParam()]);
    const qint64 duration = killAfter(trial.path(""), -1).second;
    (void)trial.takeResults();
    std::mt19937 random(numberFrom("VELO_TRIAL_SEED", 1) + 100 * GetParam());
    for (int round = 0; round < numberFrom("VELO_TRIAL_KILLS", 3); ++round) {
        const qint64 moment = std::uniform_int_distribution<qint64>(0, duration)(random);
        const int volumesRead = killAfter(trial.path(""), moment).first;
        SCOPED_TRACE(testing::Message()
                     << "round " << round << ", " << moment << " us, read " << volumesRead);
        ASSERT_EQ(trial.journals().size(), 1);
        const QString journal = trial.journals().front();
        const int volumes = countJournal(journal).volumes;
        RecordProperty("volumesAtKill" + std::to_string(round), volumes);
        EXPECT_GE(volumes, volumesRead - 1) << "at most the volume in flight is missing";
        trial.expectComesBack(journal, round % 4 == 3);
    }
}

INSTANTIATE_TEST_SUITE_P(Kinds, KilledRun, testing::Range(0, numberFrom("VELO_TRIAL_KINDS", 3)));
