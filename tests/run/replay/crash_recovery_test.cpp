// Runs that end in their middle, and what comes back of them.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/journal/journal_scan.h"
#include "run/replay/crash_trial.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QProcess>
#include <random>

namespace {

struct TrialKind {
    int size;
    int slices;
    HeadMotion motion;
    ProtocolKind protocol;
};

// The first ones are tests; all of them, with many kills, are a trial of some minutes:
// VELO_TRIAL_KINDS=6 VELO_TRIAL_KILLS=35 VELO_TRIAL_SEED=1.
constexpr TrialKind trialKinds[] = {
    {24, 6, HeadMotion::None, ProtocolKind::Prt},    {32, 8, HeadMotion::Drift, ProtocolKind::Tdat},
    {24, 6, HeadMotion::Jumps, ProtocolKind::Rtp},   {64, 25, HeadMotion::Drift, ProtocolKind::Prt},
    {104, 72, HeadMotion::Drift, ProtocolKind::Prt}, {104, 72, HeadMotion::None, ProtocolKind::Rtp},
};

SimulationOptions optionsOf(const TrialKind& kind, const QString& folder) {
    SimulationOptions options;
    options.folder = folder;
    options.sizeX = options.sizeY = kind.size;
    options.nrOfSlices = kind.slices;
    options.motion = kind.motion;
    options.protocol = kind.protocol;
    options.nrOfVolumes = 32;
    options.blockLength = 4;
    return options;
}

int numberFrom(const char* variable, int otherwise) {
    return qEnvironmentVariableIsSet(variable) ? qEnvironmentVariableIntValue(variable) : otherwise;
}

constexpr char victimFolder[] = "VELO_TRIAL_FOLDER";
constexpr char volumeMark = '#';
constexpr int analysedVolumes = 30;

} // namespace

// A run in a process of its own, which the tests below kill. It tells of each volume that it has
// read.
TEST(CrashVictim, DISABLED_Runs) {
    QtEventPump pump;
    ProbeDisplay display;
    RunSession session(pump, display);
    session.keepsJournals = true;
    TrialOperator trialOperator(session);
    trialOperator.whenRead = [](int) {
        std::fputc(volumeMark, stdout);
        std::fflush(stdout);
    };
    CrashTrial::prepare(session, qEnvironmentVariable(victimFolder));
    session.runButtonPressed();
}

namespace {

/// Runs the victim and kills it after this time; a negative one lets it end. The number of volumes
/// that it had read.
int killAfter(const QString& folder, qint64 microseconds, qint64* duration = nullptr) {
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
    if (duration)
        *duration = sinceFirst.nsecsElapsed() / 1000;
    output += victim.readAllStandardOutput();
    return int(output.count(volumeMark));
}

void compare(const QMap<QString, QByteArray>& found, const QMap<QString, QByteArray>& expected) {
    EXPECT_EQ(found.keys().join(' '), expected.keys().join(' '));
    for (const QString& name : expected.keys())
        EXPECT_TRUE(found[name] == expected[name]) << qPrintable(name);
}

} // namespace

// The kills of one kind of run: what is recovered is what a run gives that was stopped there.
class KilledRun : public testing::TestWithParam<int> {};

TEST_P(KilledRun, IsRecoveredAsIfItHadBeenStoppedThere) {
    QTemporaryDir folder;
    CrashTrial trial(optionsOf(trialKinds[GetParam()], folder.path()));
    qint64 duration = 0;
    killAfter(folder.path(), -1, &duration);
    (void)trial.takeResults();
    std::mt19937 random(numberFrom("VELO_TRIAL_SEED", 1) + 100 * GetParam());
    for (int round = 0; round < numberFrom("VELO_TRIAL_KILLS", 3); ++round) {
        const qint64 moment = std::uniform_int_distribution<qint64>(0, duration)(random);
        const int volumesRead = killAfter(folder.path(), moment);
        ASSERT_EQ(trial.journals().size(), 1);
        const QString journal = trial.journals().front();
        const JournalCount count = countJournal(journal);
        SCOPED_TRACE(testing::Message() << "round " << round << ", " << moment << " us, read "
                                        << volumesRead << ", kept " << count.volumes);
        RecordProperty("volumesAtKill" + std::to_string(round), count.volumes);
        EXPECT_GE(count.volumes, volumesRead - 1) << "at most the volume in flight is missing";
        const bool goesOn = round % 4 == 3;
        trial.play(journal, goesOn ? PlayPurpose::GoOn : PlayPurpose::Recover, count.changes);
        const auto found = trial.takeResults();
        if (goesOn)
            trial.run(-1, 1000);
        else
            trial.run(count.volumes < analysedVolumes ? count.volumes : -1, count.changes);
        compare(found, trial.takeResults());
    }
}

INSTANTIATE_TEST_SUITE_P(Kinds, KilledRun, testing::Range(0, numberFrom("VELO_TRIAL_KINDS", 3)));

// A journal that ends anywhere is what a crash leaves there; so all places can be tried.
TEST(CutJournal, GivesTheRunUpToThere) {
    for (const TrialKind& kind : {trialKinds[0], trialKinds[1]}) {
        QTemporaryDir folder;
        CrashTrial trial(optionsOf(kind, folder.path()));
        trial.keepsJournals = true;
        trial.run(-1, 1000);
        const QString kept = folder.filePath("kept.vcj");
        ASSERT_TRUE(QFile::copy(trial.journals().value(0), kept));
        const auto whole = trial.takeResults();
        std::vector<qint64> ends;
        JournalCursor cursor(kept);
        for (JournalRecord record; cursor.next(record);)
            ends.push_back(cursor.goodBytes());
        trial.keepsJournals = false;
        // From before the first analysed volume on; VELO_TRIAL_CUTS=1 cuts at every record.
        const auto step = size_t(numberFrom("VELO_TRIAL_CUTS", 5));
        int round = 0;
        for (size_t record = 2; record < ends.size(); record += step, ++round) {
            const QString journal = folder.filePath("results/cut.vcj");
            ASSERT_TRUE(QDir().mkpath(folder.filePath("results")) && QFile::copy(kept, journal) &&
                        QFile::resize(journal, ends[record] - (round % 2 == 0 ? 0 : 1)));
            const JournalCount count = countJournal(journal);
            SCOPED_TRACE(testing::Message() << "cut at record " << record << ", volumes "
                                            << count.volumes << ", changes " << count.changes);
            const bool goesOn = round % 3 == 2 || count.volumes == 0;
            trial.play(journal, goesOn ? PlayPurpose::GoOn : PlayPurpose::Recover, count.changes);
            const auto found = trial.takeResults();
            trial.run(goesOn || count.volumes == analysedVolumes ? -1 : count.volumes,
                      goesOn ? 1000 : count.changes);
            compare(found, trial.takeResults());
        }
    }
}
