// What is said and offered about runs that can be recovered or replayed.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/paths.h"
#include "run/journal/journal_writer.h"
#include "run/loop/session_fixture.h"
#include "run/replay/journal_records.h"
#include "run/replay/recovery_choices.h"
#include "run/replay/replay_choices.h"

namespace {

JournalDescription describedRun() {
    JournalDescription journal;
    journal.path = "/data/run.vcj";
    journal.head.startedAt = 1'700'000'000'000;
    journal.head.projectName = "run";
    journal.head.targetFolder = "/data/results/";
    journal.head.settings.path = "/data/run-1.vco";
    journal.head.project.NrOfVolumes = 120;
    journal.nrOfVolumes = 87;
    journal.latestArrival = journal.head.startedAt + 180'000;
    return journal;
}

} // namespace

TEST(RecoveryChoices, FollowWhatTheJournalHolds) {
    JournalDescription journal = describedRun();
    const auto expectChoices = [&](bool recover, bool goOn) {
        EXPECT_EQ(recoveryChoices(journal).recover, recover);
        EXPECT_EQ(recoveryChoices(journal).goOn, goOn);
    };
    expectChoices(true, true);
    EXPECT_EQ(recoveryColumns(journal)[3], "87 of 120");
    EXPECT_EQ(recoveryOptions(journal, " /data/results ").targetFolder, QString());
    EXPECT_EQ(recoveryOptions(journal, "/else").targetFolder, "/else/");
    EXPECT_EQ(recoveryOptions(journal, "/else").path, journal.path);
    journal.loopEnded = true;
    expectChoices(true, false);
    journal.loopEnded = false;
    journal.nrOfVolumes = 0;
    expectChoices(false, true);
    EXPECT_EQ(recoveryColumns(journal)[2], "none");
}

TEST(RecoveryChoices, TheTextTellsHowAndWhenTheRunEnded) {
    const std::tuple<int, const char*> times[] = {
        {-5, "less than a minute"}, {59, "less than a minute"}, {60, "1 minute"},
        {3599, "59 minutes"},       {2 * 3600, "2 hours"},      {49 * 3600, "2 days"}};
    JournalDescription journal = describedRun();
    for (const auto& [seconds, ago] : times)
        EXPECT_EQ(recoveryText(journal, journal.latestArrival + qint64(seconds) * 1000),
                  QString("The run was not over when its journal ended, ") + ago +
                      " ago.\nJournal: /data/run.vcj\nSettings file: /data/run-1.vco (no longer "
                      "there; its text is in the journal)");
    journal.nrOfVolumes = 0;
    EXPECT_TRUE(recoveryText(journal, journal.latestArrival).contains("3 minutes ago"));
    journal.loopEnded = true;
    EXPECT_TRUE(recoveryText(journal, 0).startsWith("The run was over, but not yet saved,"));
    journal.scan = {JournalEnd::Damaged, 1'000'000, 3'500'000, 9};
    EXPECT_TRUE(recoveryText(journal, 0).contains("2.5 MB"));
    journal.saved = true;
    EXPECT_TRUE(recoveryText(journal, 0).startsWith("The results of this run are saved."));
}

class ReplayChoicesTest : public SessionFixture {
protected:
    ReplayChoicesTest() {
        writeSession(20, 0);
        journal_ = recordJournal();
    }
    [[nodiscard]] ReplayableRun run(const QString& file) const {
        return describeReplayableRun(file, session.settings);
    }

    QString journal_;
};

TEST_F(ReplayChoicesTest, WhatCannotBePlayedIsNamed) {
    put("notes.txt", "");
    put("none.vcj", "no journal");
    put("none.fmr", "no project");
    QDir().mkpath(path("alone"));
    put("alone/test.fmr", content("results/test.fmr")); // without its data
    for (const QString& file : {QString(), path("gone.vcj"), path("notes.txt"), path("none.vcj"),
                                path("none.fmr"), path("alone/test.fmr")}) {
        const ReplayFault fault = findReplayFault(run(file), {true, {}, path("replay"), true});
        EXPECT_EQ(fault.choice, ReplayChoice::Run) << file.toStdString();
        EXPECT_TRUE(fault.text.endsWith('.') || fault.text.endsWith('!'));
        EXPECT_TRUE(file.isEmpty() || fault.text.contains(file.section('/', -1).section('.', 0, 0)))
            << fault.text.toStdString();
    }
}

TEST_F(ReplayChoicesTest, RecoveryAsksBeforeItReplacesALaterRun) {
    JournalDescription run = describedRun();
    // A name with a dot is written as it stands.
    for (const QString name : {"run1.fmr", "S01_2024.03.12", "test"}) {
        writeSession(20, 0, {{"ProjectName:", '"' + name + '"'}});
        session.runButtonPressed();
        run.head.projectName = name;
        EXPECT_TRUE(
            replacementQuestion(run, path("results")).contains('"' + name + "\" with 20 volumes"))
            << qPrintable(name);
    }
    EXPECT_TRUE(replacementQuestion(run, path("elsewhere")).isEmpty());
    run.latestArrival = QFileInfo(path("results/test.fmr")).lastModified().toMSecsSinceEpoch();
    EXPECT_TRUE(replacementQuestion(run, path("results")).isEmpty()) << "it was there before";
}

TEST_F(ReplayChoicesTest, SettingsAndFolderMustFitTheRun) {
    put("other.vco", content("test-1.vco"));
    session.settings.settingsFilePath = path("test-1.vco");
    const QString project = path("results/test.fmr");
    const QString renamed = path("results/renamed.fmr"); // not that of the settings
    put("results/renamed.fmr", content("results/test.fmr"));
    const QString own;
    const QString other = path("other.vco");
    const QString good = path("replay");
    const std::tuple<QString, QString, QString, ReplayChoice> cases[] = {
        {journal_, own, good, ReplayChoice::None},
        {project, own, good, ReplayChoice::None},
        {project, other, good, ReplayChoice::None},
        {renamed, own, good, ReplayChoice::Settings},
        {renamed, other, good, ReplayChoice::None},
        {journal_, path("gone.vco"), good, ReplayChoice::Settings},
        {journal_, own, path("results"), ReplayChoice::Folder},
        {project, own, path("results/../results/"), ReplayChoice::Folder},
        {project, own, "replay", ReplayChoice::Folder},
        {project, own, "", ReplayChoice::Folder},
        {project, own, "/dev/null/results/", ReplayChoice::Folder},
        {project, own, path("a/b/"), ReplayChoice::None}};
    for (const auto& [file, settings, folder, fault] : cases) {
        const ReplayChoices choices{settings.isEmpty(), settings, folder, true};
        EXPECT_EQ(findReplayFault(run(file), choices).choice, fault)
            << file.toStdString() << " " << folder.toStdString();
        if (fault != ReplayChoice::None)
            continue;
        const PlayOptions options = replayOptions(run(file), choices);
        const QString ownFile = file == journal_ ? QString() : path("test-1.vco");
        EXPECT_EQ(options.settingsFile, settings.isEmpty() ? ownFile : settings);
        EXPECT_EQ(options.targetFolder, paths::withTrailingSlash(folder));
        EXPECT_TRUE(options.atTR);
    }
}

TEST_F(ReplayChoicesTest, AVolumeOutOfOrderIsNotCounted) {
    cutJournal(journal_, 5);
    const JournalScanResult scan = describeJournal(journal_)->scan;
    JournalWriter(continueJournalFile(journal_, scan.goodBytes), false)
        .add(uint32_t(RecordKind::MeasuredVolume), {encodeArrival({7, 5, 5})});
    const auto offered = offeredJournals({path("none"), journal_});
    ASSERT_EQ(offered.size(), 1u);
    EXPECT_EQ(offered[0].nrOfVolumes, 5);
}

TEST_F(ReplayChoicesTest, TheTextTellsWhatWillHappen) {
    EXPECT_EQ(proposedReplayFolder(journal_), path("results/replay/"));
    EXPECT_EQ(replayText(run(journal_), {true, {}, "/r", true}),
              "The 20 volumes of \"test\" are analysed again with the settings of the run, one "
              "every 2000 ms (0 min 40 s). The results go into \"/r/\" and replace those of an "
              "earlier replay there; the run itself stays as it is.");
    const QString project = path("results/test.fmr");
    EXPECT_TRUE(session.playSavedRun({project, path("test-1.vco"), path("replay/"), false}, true));
    EXPECT_EQ(projectOf(session.settings), path("replay/test.fmr"));
    EXPECT_EQ(projectOf(settingsOfCurrentFile(session.settings)), project);
}

// One that was written earlier holds all fields in their order; then one with times of slices.
TEST(JournalRecords, AHeadReadsBackAndIsWrittenAsEver) {
    const QByteArray earlier = contentOf(VELO_SOURCE_DIR "/tests/fuzz/corpus/run_records/head");
    std::vector<uint8_t> bytes(earlier.begin(), earlier.end());
    for (int round = 0; round < 2; ++round) {
        RunHead head;
        head.project.sliceTimes = {9.0f};
        head.project.ProtocolFiles << "former";
        ASSERT_TRUE(decodeHead(bytes, head));
        EXPECT_EQ(encodeHead(head), bytes);
        head.project.sliceTimes = {1.0f, 2.0f};
        bytes = encodeHead(head);
    }
}
