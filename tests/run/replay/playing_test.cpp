// Recovering and replaying runs, and what happens when that can't be done.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/loop/session_fixture.h"
#include "run/replay/journal_description.h"
#include "volume/fmr_file.h"

namespace {

class PlayingTest : public SessionFixture {
protected:
    PlayingTest() {
        QDir().mkpath(path("fallback"));
        session.journal.setPlaces(path("fallback/"), JournalList(path("OpenJournals")));
    }
    ~PlayingTest() override { QDir().setCurrent(QDir::tempPath()); }

    /// Runs the session, whose journal is then "run.vcj".
    void recordRun(int volumes = 20, const QMap<QString, QString>& changes = {}) {
        writeSession(volumes, 0, changes);
        session.keepsJournals = true;
        session.runButtonPressed();
        session.keepsJournals = false;
        const QStringList kept = QDir(path("results")).entryList({"*.vcj"});
        ASSERT_EQ(kept.size(), 1);
        ASSERT_TRUE(QFile::rename(path("results/" + kept.front()), path("run.vcj")));
    }
    /// Of its latest volume, in milliseconds after the first.
    [[nodiscard]] qint64 lastArrival() const {
        VolumeArrival arrival;
        std::span<const uint8_t> samples;
        JournalCursor cursor(path("run.vcj"));
        for (JournalRecord record; cursor.next(record);)
            if (RecordKind(record.kind) == RecordKind::MeasuredVolume &&
                !decodeVolume(record.payload, arrival, samples))
                return -1;
        return arrival.sinceFirstVolume;
    }
    [[nodiscard]] PlayOptions playing(const QString& target = {},
                                      const QString& name = "run.vcj") const {
        return {path(name), {}, target.isEmpty() ? QString() : path(target), false};
    }
    [[nodiscard]] int volumesIn(const QString& folder) const {
        return savedVolumes(content(folder + "/test.stc"), 8 * 8, 4, scriptedSample);
    }
};

} // namespace

TEST_F(PlayingTest, AReplayGivesWhatTheRunGaveInAFolderOfItsOwn) {
    recordRun();
    const QString savedProject = "results/test.fmr";
    const QString settings = path("test-1.vco");
    messages.expect(MessageLevel::Warning, "ERROR: The results of a replay would replace those*");
    EXPECT_FALSE(session.playJournal(playing("results"), PlayPurpose::Replay));
    messages.expect(MessageLevel::Warning, "ERROR: The results of a replay would replace those*");
    EXPECT_FALSE(
        session.playSavedRun({path(savedProject), settings, path("results/"), false}, true));
    EXPECT_TRUE(session.playJournal(playing("again"), PlayPurpose::Replay));
    EXPECT_TRUE(session.playSavedRun({path(savedProject), settings, path("again2/"), false}, true));
    for (const char* name :
         {"test.stc", "test.fmr", "test.mps", "test.ctr", "test.prt", "test-firstvol.img"})
        for (const char* folder : {"again/", "again2/"})
            EXPECT_TRUE(content(QString(folder) + name) == content(QString("results/") + name))
                << folder << name;
    EXPECT_TRUE(QFile::exists(path("run.vcj")));
}

TEST_F(PlayingTest, AReplayKeepsThePaceThatIsAskedFor) {
    recordRun();
    for (const bool atTR : {true, false}) {
        const qint64 start = pump.milliseconds();
        PlayOptions options = playing("again");
        options.atTR = atTR;
        EXPECT_TRUE(session.playJournal(options, PlayPurpose::Replay));
        const qint64 expected = atTR ? 19 * 2000 : 0; // TR of the settings
        EXPECT_NEAR(double(pump.milliseconds() - start), double(expected), 100);
    }
}

TEST_F(PlayingTest, ARunIsRecoveredWithTheFilesThatItWasPreparedFrom) {
    recordRun();
    ASSERT_TRUE(QFile::rename(path("results/test.ctr"), path("own.ctr")));
    QByteArray contrasts = content("own.ctr");
    put("own.ctr", contrasts.replace("InitialSelectionState:\n1", "InitialSelectionState:\n0"));
    ASSERT_NE(content("own.ctr"), content("results/test.ctr"));
    ASSERT_TRUE(QFile::remove(path("run.vcj")));
    script.millisecondsPerVolume = 1500;
    recordRun(20, {{"ContrastFile:", "\"./own.ctr\""}, {"Threshold:", "2.5"}});
    QMap<QString, QByteArray> expected;
    for (const char* name : {"test.mps", "test.ctr", "test.prt", "test.fmr"})
        expected[name] = content(QString("results/") + name);
    EXPECT_TRUE(QFile::remove(path("own.ctr")) && QFile::remove(path("test-1.vco")) &&
                QFile::remove(path("test.prt")) && QDir(path("results")).removeRecursively());
    const auto description = describeJournal(path("run.vcj"));
    ASSERT_TRUE(description);
    EXPECT_NEAR(double(description->latestArrival - description->head.startedAt), 0, 10000);
    EXPECT_EQ(lastArrival(), 19 * 1500);
    EXPECT_TRUE(session.playJournal(playing(), PlayPurpose::Recover));
    for (const QString& name : expected.keys())
        EXPECT_EQ(content("results/" + name), expected[name]) << qPrintable(name);
}

TEST_F(PlayingTest, AnotherCrashAfterGoingOnLosesNothing) {
    recordRun();
    // Twice: from nothing but the first volume, and from the middle.
    for (const int volumes : {0, 8, 14}) {
        cutJournal(path("run.vcj"), volumes);
        session.keepsJournals = true;
        display.whenLogged = [&] { // what runs goes on as it is
            const bool plays =
                session.phase.runActive() && session.playJournal(playing(), PlayPurpose::Recover);
            EXPECT_FALSE(plays);
        };
        EXPECT_TRUE(session.playJournal(playing(), PlayPurpose::GoOn));
        display.whenLogged = {};
        const auto description = describeJournal(path("run.vcj"));
        ASSERT_TRUE(description);
        EXPECT_EQ(description->nrOfVolumes, 20);
        EXPECT_EQ(description->scan.end, JournalEnd::Whole);
        // Head, first volume, thresholds at the start, 20 volumes, the ends of loop and saving.
        EXPECT_EQ(description->scan.nrOfRecords, 25);
    }
    cutJournal(path("run.vcj"), 17);
    session.keepsJournals = false;
    EXPECT_TRUE(session.playJournal(playing(), PlayPurpose::Recover));
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
    recordRun(20, {{"MotionCorrection:", "1"},
                   {"IntraSessionMotionCorrection:",
                    "1\nIntraSessionMotionCorrectionFile: \"" + path("target.fmr") + "\""}});
    session.makeReader = makeReader;
    ASSERT_TRUE(QFile::remove(path("target.fmr")) && QFile::remove(path("target.stc")));
    cutJournal(path("run.vcj"), 0);
    session.keepsJournals = true;
    EXPECT_TRUE(session.playJournal(playing(), PlayPurpose::GoOn));
    session.keepsJournals = false;
    cutJournal(path("run.vcj"), 12);
    EXPECT_TRUE(session.playJournal(playing(), PlayPurpose::Recover));
    EXPECT_EQ(session.report.currentVolume, 11);
    EXPECT_EQ(session.requests.thresholds.Threshold, 3.25f);
}

TEST_F(PlayingTest, OtherSettingsMustFitTheVolumes) {
    recordRun();
    const QByteArray own = content("test-1.vco");
    const struct {
        const char* from;
        const char* to;
        bool fits;
    } cases[] = {
        {"DriftConfoundPredictors:          1", "DriftConfoundPredictors:          0", true},
        {"NrOfSlices:                       4", "NrOfSlices:                       5", false}};
    for (const auto& [from, to, fits] : cases) {
        ASSERT_TRUE(own.contains(from)) << own.constData();
        put("other.vco", QByteArray(own).replace(from, to));
        PlayOptions options = playing("other");
        options.settingsFile = path("other.vco");
        if (!fits)
            messages.expect(MessageLevel::Warning, "ERROR: The volumes of \"*");
        EXPECT_EQ(session.playJournal(options, PlayPurpose::Replay), fits);
        if (fits) {
            EXPECT_EQ(volumesIn("other"), 20);
            EXPECT_FALSE(content("other/test.mps") == content("results/test.mps"));
        }
    }
}

TEST_F(PlayingTest, DamageIsToldAndTheFileStays) {
    recordRun();
    cutJournal(path("run.vcj"), 15);
    const QByteArray whole = content("run.vcj");
    const qint64 volumeBytes = 8 * 8 * 4 * 2 + 40; // samples and what stands around them
    const struct {
        qint64 position;
        const char* bytes;
        int left; ///< volumes
    } cases[] = { // Samples of the last volume but two; the length of a record; zeros at the end.
                 {whole.size() - 2 * volumeBytes - 100, "\x55\x33", 12},
                 {whole.size() - 3 * volumeBytes + 8, "\xff\xff\xff\xff", 12},
                 {whole.size(), "\x01", 15}};
    for (const auto& [position, bytes, left] : cases) {
        QByteArray damaged = whole;
        damaged.replace(position, qstrlen(bytes), bytes);
        put("run.vcj", damaged);
        session.journal.list().add(path("run.vcj"));
        messages.expect(MessageLevel::Warning, "WARNING: The journal \"" + path("run.vcj") +
                                                   "\" is damaged after volume " +
                                                   QString::number(left) + "*");
        EXPECT_TRUE(session.playJournal(playing(), PlayPurpose::Recover));
        EXPECT_EQ(volumesIn("results"), left);
        EXPECT_EQ(content("run.vcj"), damaged);
        EXPECT_TRUE(session.unfinishedJournals().isEmpty());
    }
    // As long as nothing of it is saved it is offered.
    QDir().mkpath(path("blocked/test.stc/x"));
    session.journal.list().add(path("run.vcj"));
    messages.expect(MessageLevel::Warning, "ERROR: Can not write FMR time course (STC) files !");
    messages.expectQuestion("WARNING: The recorded data could not be saved completely in*", false);
    messages.expect(MessageLevel::Warning, "WARNING: The journal \"*");
    EXPECT_TRUE(session.playJournal(playing("blocked"), PlayPurpose::Recover));
    EXPECT_EQ(session.unfinishedJournals().size(), 1);
    for (const QByteArray& head : {QByteArray("nothing"), whole.left(60)}) {
        put("run.vcj", head);
        messages.expect(MessageLevel::Warning, "ERROR: \"" + path("run.vcj") + "\" is not the*");
        EXPECT_FALSE(session.playJournal(playing(), PlayPurpose::Recover));
    }
}

TEST_F(PlayingTest, ARunThatCouldNotBeSavedIsRecoveredFromItsJournal) {
    writeSession(20, 0);
    // The name of a file of the results is taken by a folder.
    QDir().mkpath(path("results/test.stc/x"));
    messages.expect(MessageLevel::Warning, "ERROR: Can not write FMR time course (STC) files !");
    messages.expectQuestion("WARNING: The recorded data could not be saved completely in*", false);
    messages.expect(MessageLevel::Information, "INFO: All volumes of this run are in its journal*");
    session.runButtonPressed();
    ASSERT_EQ(session.unfinishedJournals().size(), 1);
    const QString journal = session.unfinishedJournals().front();
    const auto description = describeJournal(journal);
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
            messages.expect(MessageLevel::Information, "RECORDING INTERRUPTED BY USER");
        EXPECT_TRUE(session.playJournal({journal, {}, path("rescued"), false}, purpose));
        EXPECT_EQ(volumesIn("rescued"), volumes);
        EXPECT_EQ(QFile::exists(journal), stopped);
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
        EXPECT_EQ(messages.shown()
                      .filter(fallback ? "The journal of this run can not be written"
                                       : "No journal of this run can be written")
                      .size(),
                  1);
        EXPECT_EQ(volumesIn("results"), 20);
        EXPECT_TRUE(QDir(path("fallback")).isEmpty());
    }
}

TEST_F(PlayingTest, ARunOfAnotherSeriesIsNotGoneOnWith) {
    recordRun();
    cutJournal(path("run.vcj"), 12);
    script.firstSample = 7; // the scanner's folder holds another series by now
    messages.expect(MessageLevel::Warning, "ERROR: The first file in folder*");
    EXPECT_FALSE(session.playJournal(playing(), PlayPurpose::GoOn));
    script.firstSample = 0;
    script.atVolume = [this](int) {
        EXPECT_EQ(session.journal.list().journals(), QStringList(path("run.vcj")));
    };
    EXPECT_TRUE(session.playJournal(playing(), PlayPurpose::GoOn));
    EXPECT_EQ(volumesIn("results"), 20);
    EXPECT_FALSE(QFile::exists(path("run.vcj")));
}
