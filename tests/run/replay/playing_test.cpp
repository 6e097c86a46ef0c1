// Recovering and replaying runs, and what happens when that can't be done.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/replay/journal_description.h"
#include "run/replay/playing_fixture.h"
#include "volume/fmr_file.h"

TEST_F(PlayingTest, AReplayGivesWhatTheRunGaveInAFolderOfItsOwn) {
    recordRun();
    for (const bool ofJournal : {true, false}) {
        const auto replay = [&](const QString& folder, bool atTR) {
            return ofJournal ? session.playJournal({journal_, {}, path(folder), atTR},
                                                   PlayPurpose::Replay)
                             : session.playSavedRun({path("results/test.fmr"), path("test-1.vco"),
                                                     path(folder), atTR},
                                                    true);
        };
        messages.expectWarning("ERROR: The results of a replay would replace those*");
        EXPECT_FALSE(replay("results/", false));
        const QString again = ofJournal ? "again/" : "again2/";
        for (const bool atTR : {true, false}) {
            const StopWatch watch(pump);
            EXPECT_TRUE(replay(again, atTR));
            EXPECT_NEAR(double(watch.elapsed()), atTR ? 19 * 2000 : 0, 100); // TR of the settings
        }
        for (const QString name :
             {"test.stc", "test.fmr", "test.mps", "test.ctr", "test.prt", "test-firstvol.img"})
            EXPECT_TRUE(content(again + name) == content("results/" + name)) << qPrintable(name);
    }
    EXPECT_TRUE(QFile::exists(journal_));
}

TEST_F(PlayingTest, ARunIsRecoveredWithTheFilesThatItWasPreparedFrom) {
    recordRun();
    QByteArray contrasts = content("results/test.ctr");
    put("own.ctr", contrasts.replace("InitialSelectionState:\n1", "InitialSelectionState:\n0"));
    ASSERT_NE(contrasts, content("results/test.ctr"));
    script.millisecondsPerVolume = 1500;
    recordRun({{"ContrastFile:", "\"./own.ctr\""}, {"Threshold:", "2.5"}});
    QMap<QString, QByteArray> expected;
    for (const QString name : {"test.mps", "test.ctr", "test.prt", "test.fmr"})
        expected[name] = content("results/" + name);
    EXPECT_TRUE(QFile::remove(path("own.ctr")) && QFile::remove(path("test-1.vco")) &&
                QFile::remove(path("test.prt")) && QDir(path("results")).removeRecursively());
    const auto description = describeJournal(journal_);
    ASSERT_TRUE(description);
    EXPECT_NEAR(double(description->latestArrival - description->head.startedAt), 0, 10000);
    VolumeArrival latest;
    std::span<const uint8_t> samples;
    JournalCursor cursor(journal_);
    for (JournalRecord record; cursor.next(record);)
        EXPECT_TRUE(RecordKind(record.kind) != RecordKind::MeasuredVolume ||
                    decodeVolume(record.payload, latest, samples));
    EXPECT_EQ(latest.sinceFirstVolume, 19 * 1500);
    EXPECT_TRUE(play(PlayPurpose::Recover));
    for (const QString& name : expected.keys())
        EXPECT_EQ(content("results/" + name), expected[name]) << qPrintable(name);
}

TEST_F(PlayingTest, AnotherCrashAfterGoingOnLosesNothing) {
    recordRun();
    // Twice: from nothing but the first volume, and from the middle.
    for (const int volumes : {0, 8, 14}) {
        cutJournal(journal_, volumes);
        put("run.vcj", "\xd5REC", QIODevice::Append); // torn
        session.keepsJournals = true;
        display.whenLogged = [&] { // what runs goes on as it is
            EXPECT_FALSE(session.phase.runActive() && play(PlayPurpose::Recover));
        };
        EXPECT_TRUE(play(PlayPurpose::GoOn));
        display.whenLogged = {};
        const auto description = describeJournal(journal_);
        ASSERT_TRUE(description);
        EXPECT_EQ(description->nrOfVolumes, 20);
        EXPECT_EQ(description->scan.end, JournalEnd::Whole);
        // Head, first volume, thresholds and regions at the start, 20 volumes, the ends of loop
        // and saving.
        EXPECT_EQ(description->scan.nrOfRecords, 26);
    }
    cutJournal(journal_, 17);
    session.keepsJournals = false;
    EXPECT_TRUE(play(PlayPurpose::Recover));
    EXPECT_EQ(volumesIn("results"), 17);
    // Shorter than planned: that is no time-out when it is replayed.
    EXPECT_TRUE(session.playSavedRun(
        {path("results/test.fmr"), path("test-1.vco"), path("again/"), false}, true));
    EXPECT_EQ(volumesIn("again"), 17);
}

TEST_F(PlayingTest, WhatARunBeganWithOutlivesACrashBeforeItsFirstVolume) {
    writeSession(20, 0);
    session.runButtonPressed();
    ASSERT_TRUE(QFile::rename(path("results/test.stc"), path("target.stc")));
    session.functionalDocument->project.Prefix = "target";
    session.functionalDocument->project.ProtocolFiles.clear();
    ASSERT_TRUE(writeFMRHeader(session.functionalDocument->project, path("target.fmr"), 20));
    messages.acceptAnything(); // noise allows no correction
    const auto makeReader = session.makeReader;
    session.makeReader = [&](const IntakeContext& context) {
        session.changeThreshold(3.25f); // while the first file is waited for
        return makeReader(context);
    };
    recordRun({{"MotionCorrection:", "1"},
               {"IntraSessionMotionCorrection:",
                "1\nIntraSessionMotionCorrectionFile: \"" + path("target.fmr") + "\""}});
    session.makeReader = makeReader;
    ASSERT_TRUE(QFile::remove(path("target.fmr")) && QFile::remove(path("target.stc")));
    cutJournal(journal_, 0);
    session.keepsJournals = true;
    EXPECT_TRUE(play(PlayPurpose::GoOn));
    session.keepsJournals = false;
    cutJournal(journal_, 12);
    EXPECT_TRUE(play(PlayPurpose::Recover));
    EXPECT_EQ(session.report.currentVolume, 11);
    EXPECT_EQ(session.requests.thresholds.Threshold, 3.25f);
}

TEST_F(PlayingTest, OtherSettingsMustFitTheVolumes) {
    recordRun();
    writeSession(20, 0, {{"NrOfSlices:", "5"}});
    messages.expectWarning("ERROR: The volumes of \"*");
    EXPECT_FALSE(play(PlayPurpose::Replay, path("other"), path("test-1.vco")));
    writeSession(20, 0, {{"DriftConfoundPredictors:", "0"}});
    EXPECT_TRUE(play(PlayPurpose::Replay, path("other"), path("test-1.vco")));
    EXPECT_EQ(volumesIn("other"), 20);
    EXPECT_FALSE(content("other/test.mps") == content("results/test.mps"));
}

TEST_F(PlayingTest, DamageIsToldAndTheFileStays) {
    recordRun();
    cutJournal(journal_, 15);
    const QByteArray whole = content("run.vcj");
    const qint64 volumeBytes = 8 * 8 * 4 * 2 + 40; // samples and what stands around them
    // Samples of the last volume but two; the length of a record; more at the end.
    const std::tuple<qint64, const char*, int> cases[] = {
        {whole.size() - 2 * volumeBytes - 100, "\x55\x33", 12},
        {whole.size() - 3 * volumeBytes + 8, "\xff\xff\xff\xff", 12},
        {whole.size(), "\x01", 15}};
    for (const auto& [position, bytes, left] : cases) {
        QByteArray damaged = whole;
        damaged.replace(position, qstrlen(bytes), bytes);
        put("run.vcj", damaged);
        session.journal.list().add(journal_);
        messages.expectWarning("WARNING: The journal \"" + journal_ +
                               "\" is damaged after volume " + QString::number(left) + "*");
        EXPECT_TRUE(play(PlayPurpose::Recover));
        EXPECT_EQ(volumesIn("results"), left);
        EXPECT_EQ(content("run.vcj"), damaged);
        EXPECT_TRUE(session.unfinishedJournals().isEmpty());
    }
    // The run goes on in a copy.
    const QString copy = path("run-goes-on.vcj");
    messages.expectWarning("WARNING: The journal \"" + journal_ + "\" is damaged*");
    session.keepsJournals = true;
    EXPECT_TRUE(play(PlayPurpose::GoOn));
    session.keepsJournals = false;
    EXPECT_EQ(describeJournal(copy)->nrOfVolumes, 20);
    // As long as nothing of it is saved it is offered.
    QDir().mkpath(path("blocked/test.stc/x"));
    session.journal.list().add(journal_);
    messages.expectWarning("ERROR: Can not write FMR time course (STC) files !");
    messages.expectQuestion("WARNING: The recorded data could not be saved completely in*", false);
    messages.expectWarning("WARNING: The journal \"*");
    EXPECT_TRUE(play(PlayPurpose::Recover, path("blocked")));
    EXPECT_EQ(session.unfinishedJournals().size(), 1);
    for (const QByteArray& head : {QByteArray("nothing"), whole.left(60)}) {
        put("run.vcj", head);
        messages.expectWarning("ERROR: \"" + journal_ + "\" is not the*");
        EXPECT_FALSE(play(PlayPurpose::Recover));
    }
}

TEST_F(PlayingTest, ARunThatCouldNotBeSavedIsRecoveredFromItsJournal) {
    writeSession(20, 0);
    // The name of a file of the results is taken by a folder.
    QDir().mkpath(path("results/test.stc/x"));
    messages.expectWarning("ERROR: Can not write FMR time course (STC) files !");
    messages.expectQuestion("WARNING: The recorded data could not be saved completely in*", false);
    messages.expectInformation("INFO: All volumes of this run are in its journal*");
    session.runButtonPressed();
    ASSERT_EQ(session.unfinishedJournals().size(), 1);
    journal_ = session.unfinishedJournals().front();
    const auto description = describeJournal(journal_);
    ASSERT_TRUE(description);
    EXPECT_EQ(description->nrOfVolumes, 20);
    EXPECT_TRUE(description->loopEnded && !description->saved);
    EXPECT_EQ(description->head.projectName, "test");

    // One that the operator stops, even at its last volume, leaves it; one that is carried through
    // does not.
    const std::pair<PlayPurpose, int> stops[] = {{PlayPurpose::Recover, 10},
                                                 {PlayPurpose::GoOn, 19},
                                                 {PlayPurpose::Recover, 19},
                                                 {PlayPurpose::Recover, 20}};
    for (const auto& [purpose, volumes] : stops) {
        const bool stopped = volumes < 20;
        display.whenLogged = [&, last = volumes - 1] {
            if (stopped && session.phase.runActive() && session.report.currentVolume == last)
                session.requestStop();
        };
        if (stopped)
            messages.expectInformation("RECORDING INTERRUPTED BY USER");
        EXPECT_TRUE(play(purpose, path("rescued")));
        EXPECT_EQ(volumesIn("rescued"), volumes);
        EXPECT_EQ(QFile::exists(journal_), stopped);
        EXPECT_EQ(session.unfinishedJournals().size(), stopped ? 1 : 0);
    }
}

TEST_F(PlayingTest, WhereNoJournalCanBeWrittenTheRunGoesOnWithout) {
    for (const bool fallback : {true, false}) {
        writeSession(20, 0);
        if (!fallback)
            QDir(path("fallback")).removeRecursively();
        // The folder of the results turns into a file, and back before they are saved.
        session.makeReader = [this, make = session.makeReader](const IntakeContext& context) {
            QDir(path("results")).removeRecursively();
            put("results", "");
            return make(context);
        };
        script.atVolume = [&](int volume) {
            EXPECT_EQ(QDir(path("fallback")).entryList({"*.vcj"}).size(), fallback ? 1 : 0);
            if (volume == 19)
                QFile::remove(path("results"));
        };
        messages.acceptAnything(); // the text of the design can't be written either
        session.runButtonPressed();
        const QString told =
            fallback ? "The journal of this run can" : "No journal of this run can";
        EXPECT_EQ(messages.shown().filter(told + " ").size(), 1);
        EXPECT_EQ(volumesIn("results"), 20);
        EXPECT_TRUE(QDir(path("fallback")).isEmpty());
    }
}

TEST_F(PlayingTest, ARunOfAnotherSeriesIsNotGoneOnWith) {
    recordRun();
    cutJournal(journal_, 12);
    const JournalRun run({journal_, {}, {}, false}, PlayPurpose::GoOn, session.listeners);
    EXPECT_TRUE(run.isMeasured());
    EXPECT_EQ(run.bytesOfJournal(), content("run.vcj").size());
    script.firstSample = 7; // the scanner's folder holds another series by now
    messages.expectWarning("ERROR: The first file in folder*");
    messages.expectInformation("INFO: The run is still in its journal*");
    EXPECT_FALSE(play(PlayPurpose::GoOn));
    script.firstSample = 0;
    script.atVolume = [this](int) {
        EXPECT_EQ(session.journal.list().journals(), QStringList(journal_));
    };
    EXPECT_TRUE(play(PlayPurpose::GoOn));
    EXPECT_EQ(volumesIn("results"), 20);
    EXPECT_FALSE(QFile::exists(journal_));
}
