// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/session/settings_file_watch.h"

#include "base/file_writing.h"
#include "run/loop/session_fixture.h"
#include "run/session/settings_file_names.h"

namespace {

class ProbeControls : public SettingsFileDisplay {
public:
    InputControls controls;
    QString title;
    int paints = 0;

    void showInputControls(const InputControls& shown) override { controls = shown; }
    void showTitle(const QString& shown) override { title = shown; }
    void paintNow() override { ++paints; }
};

class SettingsFileWatchTest : public SessionFixture {
protected:
    SettingsFileWatchTest() {
        folders_.applicationDataPath = path("app/");
        folders_.dataPath = path("data/");
        folders_.homePath = path("home/");
        for (const QString& folder :
             {folders_.applicationDataPath, folders_.dataPath, folders_.homePath})
            QDir().mkpath(folder);
        watch_ = std::make_unique<SettingsFileWatch>(folders_, session, pump, display, controls_);
        display.whenStarting = [this] { watch_->workStarting(); };
        display.whenEnded = [this] { watch_->workEnded(); };
    }

    /// Settings files of a session, each of a run that the scripted source feeds; the first of
    /// them is current.
    void beginWith(const QStringList& names) {
        writeSession(16, 2);
        for (const QString& name : names)
            put(name, content("test-1.vco"));
        QFile::remove(path("test-1.vco"));
        watch_->setSettingsFile(path(names[0]));
    }
    void add(const QString& name, const QString& like) { put(name, content(like)); }
    [[nodiscard]] QString current() const { return watch_->master().settingsFileName; }
    [[nodiscard]] int nrOfRuns() const { return int(display.calls.count("starting")); }
    [[nodiscard]] QByteArray masterText() const { return content("app/MasterVCO"); }
    void expectInMasterFile(const QStringList& lines) const {
        for (const QString& line : lines)
            EXPECT_TRUE(masterText().contains(line.toUtf8())) << line.toStdString();
    }
    [[nodiscard]] QString panel() const { return display.logTexts.last(); }

    StandardFolders folders_;
    ProbeControls controls_;
    std::unique_ptr<SettingsFileWatch> watch_;
};

} // namespace

TEST_F(SettingsFileWatchTest, AFirstStartOffersTheSampleSession) {
    QDir().mkpath(path("data/VCO_FacesHouses"));
    put("data/VCO_FacesHouses/VCO_FacesHouses.prt", "of the user");
    ASSERT_TRUE(watch_->readMasterFile());
    EXPECT_EQ(content("data/VCO_FacesHouses/VCO_FacesHouses.prt"), "of the user");
    expectInMasterFile({"\"VCO_FacesHouses-1.vco\""});
    const QString message = path("data/VCO_FacesHouses/SampleMessage.rtc");
    EXPECT_TRUE(QFile::exists(message));
    EXPECT_EQ(session.decoder.samplePath(), message);
    watch_->look();
    EXPECT_EQ(controls_.title, "VCO - VCO_FacesHouses-1.vco");
    EXPECT_TRUE(panel().contains("Click the \"<b>Record</b>\" button"));
    EXPECT_EQ(session.runButton(), RunButtonState::Ready);
    EXPECT_FALSE(controls_.controls.previousExists || controls_.controls.reloadPossible);
}

TEST_F(SettingsFileWatchTest, ShowsNeighboursAndGoesToThem) {
    beginWith({"r-3.vco", "r-4.vco", "r-2.vco"});
    watch_->look();
    EXPECT_TRUE(controls_.controls.previousExists && controls_.controls.nextExists);
    watch_->toNeighbour(+1);
    EXPECT_EQ(current(), "r-4.vco");
    EXPECT_TRUE(controls_.controls.previousExists && !controls_.controls.nextExists);
    messages.expectInformation("INFO: The requested settings file \"r-5.vco\" is not available !");
    watch_->toNeighbour(+1);
    EXPECT_EQ(current(), "r-4.vco");
    watch_->toNeighbour(-1);
    watch_->toNeighbour(-1);
    EXPECT_EQ(current(), "r-2.vco");
    EXPECT_TRUE(!controls_.controls.previousExists && controls_.controls.nextExists);
    watch_->start();
    EXPECT_FALSE(controls_.controls.nextExists) << "until the first look";

    for (const auto& [name, text] : std::vector<std::pair<QString, QString>>{
             {"run", "ERROR: No \"vco\" extension found in settings file name"},
             {"run3.vco", "ERROR: No \"-\" character found separating the run number (name should "
                          "be \"<basename>-<nr>.vco\"."}}) {
        watch_->setSettingsFile(path(name));
        messages.expectInformation(text);
        watch_->toNeighbour(+1);
    }
}

TEST_F(SettingsFileWatchTest, AutoAdvanceTakesNewFilesOneByOneAndRunsThem) {
    beginWith({"r-1.vco", "r-2.vco"});
    watch_->setAutoAdvance(true);
    watch_->look();
    EXPECT_TRUE(controls_.controls.autoAdvanceRun && !controls_.controls.autoStartRun);
    watch_->look();
    EXPECT_EQ(current(), "r-1.vco") << "files that were there at the start are not run";
    add("r-4.vco", "r-1.vco");
    watch_->look();
    EXPECT_EQ(current(), "r-1.vco") << "there is a gap";
    add("r-3.vco", "r-1.vco");
    for (const char* expected : {"r-3.vco", "r-4.vco"}) {
        watch_->look();
        EXPECT_EQ(current(), expected);
        const int before = nrOfRuns();
        watch_->look();
        EXPECT_EQ(nrOfRuns(), before + 1) << expected;
        EXPECT_TRUE(session.report.runFinished);
    }
    watch_->look();
    watch_->look();
    EXPECT_EQ(current(), "r-4.vco");
    EXPECT_EQ(nrOfRuns(), 2);

    // A run that can't be saved is asked about once, and keeps the next one waiting.
    session.report.onlyInMemory = true;
    document().project.targetFolder = path("r-1.vco/");
    add("r-5.vco", "r-1.vco");
    messages.acceptAnything(false);
    int questions = 0;
    messages.onQuestion = [&] { messages.acceptAnything(++questions == 1); }; // save; not again
    watch_->look();
    const int asked = questions;
    EXPECT_GT(asked, 0);
    watch_->look();
    EXPECT_EQ(questions, asked);
    EXPECT_EQ(current(), "r-4.vco");
    session.report.onlyInMemory = false;
    watch_->look();
    EXPECT_EQ(current(), "r-5.vco");
}

TEST_F(SettingsFileWatchTest, AutoStartRunsAFileOnceWhenItIsThere) {
    beginWith({"r-1.vco"});
    watch_->setAutoStart(true);
    QFile::rename(path("r-1.vco"), path("away"));
    watch_->look();
    EXPECT_EQ(session.runButton(), RunButtonState::NoSettingsFile);
    EXPECT_TRUE(panel().contains("not available"));
    EXPECT_TRUE(controls_.controls.autoStartRun && !controls_.controls.autoAdvanceRun);
    QFile::rename(path("away"), path("r-1.vco"));
    watch_->start();
    bool painted = false;
    pump.after(0, [&] {
        painted = panel().contains("Processing...") && controls_.paints > 0;
        session.runButtonPressed(); // a click that the look finds among the events
    });
    bool rested = false;
    script.atVolume = [&](int) {
        rested = !watch_->isRunning() && !controls_.controls.preLoadPossible;
        watch_->look(); // the session is busy
        EXPECT_FALSE(watch_->setSettingsFile(path("other-1.vco")));
        watch_->toNeighbour(+1);
        watch_->chooseSettingsFile();
    };
    controls_.paints = 0;
    watch_->look();
    EXPECT_TRUE(painted && rested);
    EXPECT_TRUE(watch_->isRunning());
    EXPECT_TRUE(controls_.controls.preLoadPossible && controls_.controls.reloadPossible);
    EXPECT_EQ(current(), "r-1.vco");
    watch_->look();
    EXPECT_EQ(nrOfRuns(), 1);
    EXPECT_EQ(session.runButton(), RunButtonState::Finished);
    EXPECT_TRUE(panel().contains("Recorded data saved as"));
    const QString thresholds = session.panelText(); // one was changed
    watch_->look();
    EXPECT_EQ(panel(), thresholds) << "stands until something newer";
    session.report.outcomeText.clear();
    watch_->look();
    EXPECT_TRUE(panel().contains("Processing completed."));
    EXPECT_FALSE(panel().contains("not saved completely"));
    session.report.savedCompletely = false;
    watch_->look();
    EXPECT_TRUE(panel().contains("not saved completely"));

    // The same file again, and then gone.
    watch_->setAutoStart(false);
    watch_->setSettingsFile(path("r-1.vco"));
    watch_->look();
    EXPECT_EQ(session.runButton(), RunButtonState::Ready);
    EXPECT_TRUE(controls_.controls.reloadPossible) << "its run is on disk";
    QFile::remove(path("r-1.vco"));
    watch_->look();
    EXPECT_FALSE(controls_.controls.reloadPossible);
}

TEST_F(SettingsFileWatchTest, AfterAFailedStartOnlyRunButtonAndANewFileHelp) {
    beginWith({"r-1.vco", "r-2.vco", "r-0.vco"});
    watch_->start();
    watch_->look();
    const auto fail = [&] {
        script.firstVolumeComes = false;
        messages.expectWarning("TIME OUT: Expected first file did not arrive!");
        session.runButtonPressed();
        script.firstVolumeComes = true;
    };
    watch_->setAutoStart(true);
    pump.after(0, fail); // a click before the look has started the run
    watch_->look();
    EXPECT_EQ(nrOfRuns(), 1);
    const auto isDead = [&] {
        const InputControls& shown = controls_.controls;
        return !watch_->isRunning() && !shown.nextExists && !shown.previousExists &&
               !shown.reloadPossible && !shown.preLoadPossible && panel().contains("Processing...");
    };
    watch_->look();
    EXPECT_TRUE(isDead());
    messages.expectFileChoice("Open File", {}); // cancelled
    watch_->chooseSettingsFile();
    EXPECT_TRUE(isDead());
    EXPECT_EQ(nrOfRuns(), 1);

    session.runButtonPressed();
    EXPECT_TRUE(session.report.runFinished);
    EXPECT_TRUE(watch_->isRunning());
    watch_->setAutoStart(false);
    watch_->setSettingsFile(path("r-1.vco"));
    watch_->look();
    fail();
    messages.expectFileChoice("Open File", path("r-2.vco"));
    watch_->chooseSettingsFile();
    EXPECT_TRUE(controls_.controls.previousExists && controls_.controls.preLoadPossible);
    EXPECT_TRUE(panel().contains("r-2.vco"));

    // So it is with a file that cannot be parsed.
    put("bad-1.vco", "FileVersion: 4\nRubbish: 1\n");
    watch_->setSettingsFile(path("bad-1.vco"));
    messages.expectWarning("*");
    watch_->look();
    EXPECT_FALSE(watch_->isRunning() || controls_.controls.reloadPossible);
}

TEST_F(SettingsFileWatchTest, TheMasterFileIsWrittenWithTheChoice) {
    ASSERT_TRUE(watch_->readMasterFile());
    const QByteArray text =
        masterText().replace("AutoStartVCO:              0", "AutoStartVCO:              1");
    ASSERT_TRUE(writeFileAtomically(path("app/MasterVCO"), text + "\n; by hand"));
    ASSERT_TRUE(watch_->readMasterFile());
    watch_->setAutoAdvance(true); // of this session only
    watch_->writeMasterFileIfChanged();
    EXPECT_TRUE(masterText().endsWith("; by hand")) << "nothing was changed";

    watch_->setSettingsFile(path("run-7.vco"));
    expectInMasterFile(
        {"\"run-7.vco\"", "AutoAdvanceRun:            0", "AutoStartVCO:              1"});
    watch_->setWindowSize(1);
    watch_->setWindowPosition({30, -4});
    watch_->writeMasterFileIfChanged();
    expectInMasterFile({"WindowSize:                1", "HorizontalWindowPosition:  30",
                        "VerticalWindowPosition:    -4", folder_.path() + "/\""});
}

TEST_F(SettingsFileWatchTest, AMasterFileThatCannotBeReadOrWrittenIsTold) {
    QDir().mkpath(path("app/MasterVCO"));
    messages.expectCritical("ERROR: \"MasterVCO\" file not found in folder: *");
    messages.expectQuestion("WARNING: The VCO file directory *", false);
    EXPECT_TRUE(watch_->readMasterFile());
    EXPECT_FALSE(watch_->isRunning()) << "the event loop does not run yet";
    messages.expectCritical("ERROR: Can not update \"MasterVCO\" file !");
    EXPECT_FALSE(watch_->writeMasterFile());
    QDir(folders_.applicationDataPath).removeRecursively();
    put("app", "");
    messages.expectCritical("ERROR: Can not update \"MasterVCO\" file !");
    EXPECT_FALSE(watch_->readMasterFile());
}

TEST_F(SettingsFileWatchTest, AMissingFolderLeavesAWayOut) {
    ASSERT_TRUE(watch_->readMasterFile());
    for (const bool choose : {true, false}) {
        watch_->setSettingsFile(path("gone/run-1.vco"));
        session.report.onlyInMemory = true;
        watch_->look(); // nobody is asked, since the answer could drop the run
        session.report.onlyInMemory = false;
        messages.expectQuestion("WARNING: The VCO file directory \"" + path("gone/") + "\" *",
                                choose);
        if (choose)
            messages.expectFileChoice("Open File", path("run-7.vco"));
        messages.onQuestion = [this] { EXPECT_FALSE(watch_->isRunning()); };
        watch_->look();
        messages.onQuestion = {};
        EXPECT_TRUE(watch_->isRunning());
        EXPECT_EQ(session.settings.settingsFilePath,
                  choose ? path("run-7.vco") : path("home/run-1.vco"));
        EXPECT_EQ(watch_->master().settingsDirectory,
                  choose ? folder_.path() + "/" : folders_.homePath);
    }
}

TEST_F(SettingsFileWatchTest, TheSettingsFileOfARecoveredRunBecomesCurrentUnlessItIsGone) {
    for (const bool keeps : {false, true}) {
        ASSERT_TRUE(watch_->readMasterFile());
        EXPECT_EQ(session.keepsJournals, keeps);
        put("app/MasterVCO", masterText() + "KeepRunJournals: 1");
    }
    beginWith({"r-1.vco"});
    const QString journal = recordJournal();
    const auto play = [&](const QString& file, const QString& folder, PlayPurpose purpose) {
        watch_->setSettingsFile(path("other.vco"));
        session.report.runFinished = purpose == PlayPurpose::Replay; // it has been measured
        return watch_->playJournal({file, {}, folder, false}, purpose);
    };
    const auto expectPlayed = [&](const QString& name) {
        messages.expectInformation("INFO: The results of \"" + name + "\" are in folder \"" +
                                   path("replay/") + "\". The current settings file is still*");
    };
    const QString copy = path("copy.vcj"); // what is recovered goes
    ASSERT_TRUE(QFile::copy(journal, copy) && QFile::rename(journal, path("run.vcj")));
    EXPECT_TRUE(play(path("run.vcj"), path("replay/"), PlayPurpose::Recover));
    EXPECT_EQ(current(), "r-1.vco");
    EXPECT_TRUE(session.report.runFinished);
    EXPECT_EQ(session.settings.TargetFolder, path("results/")) << "what a reload will read";

    expectPlayed("copy.vcj");
    ProbeListener view(session.listeners, ListenerPlace::Views);
    pump.setEventCost(1);
    EXPECT_TRUE(play(copy, path("replay/"), PlayPurpose::Replay));
    EXPECT_GT(session.report.elapsedRunTime, 14);
    EXPECT_TRUE(view.hooks.join(' ').endsWith("over changed stays")) << "it can be looked at";
    EXPECT_EQ(recordedVolumes(session.report, session.functionalDocument->project), 14);
    EXPECT_EQ(current(), "other.vco");
    EXPECT_TRUE(session.report.runFinished) << "auto-start must not measure that once more";
    expectPlayed("test.fmr");
    EXPECT_TRUE(watch_->playSavedRun(
        {path("results/test.fmr"), path("r-1.vco"), path("replay/"), false}, true));
    QFile::remove(path("r-1.vco"));
    expectPlayed("copy.vcj");
    EXPECT_TRUE(play(copy, path("replay/"), PlayPurpose::GoOn));
    EXPECT_EQ(session.settings.settingsFilePath, path("other.vco"));
    EXPECT_FALSE(session.report.runFinished) << "of that file";

    messages.expectWarning("ERROR: \"" + path("none.vcj") + "\"*");
    EXPECT_FALSE(play(path("none.vcj"), {}, PlayPurpose::Recover));
    EXPECT_TRUE(watch_->isRunning() && !session.report.startFailed) << "not that of this file";
    EXPECT_EQ(current(), "other.vco");
}

// Its settings file is gone: if it were still the session's, the next run would end the program.
TEST_F(SettingsFileWatchTest, APlayedRunThatIsOnlyInMemoryStaysSoWhileTheCurrentFileIsRight) {
    beginWith({"r-1.vco", "other.vco"});
    const QString journal = recordJournal();
    ASSERT_TRUE(QFile::remove(path("r-1.vco")));
    watch_->setSettingsFile(path("other.vco"));
    put("other.vco", content("other.vco").replace("\"test\"", "\"next\""));
    watch_->look();
    display.whenEnded = [this] {
        watch_->workEnded();
        session.report.savedCompletely = false;
        session.report.onlyInMemory = true;
    };
    EXPECT_TRUE(watch_->playJournal({journal, {}, path("replay/"), false}, PlayPurpose::GoOn));
    display.whenEnded = [this] { watch_->workEnded(); };
    EXPECT_EQ(session.settings.settingsFilePath, path("other.vco"));
    ASSERT_TRUE(QDir(path("replay")).removeRecursively());
    watch_->setAutoStart(true);
    watch_->look(); // begins nothing by itself, asks nothing, and leaves the settings of the run
    EXPECT_EQ(session.settings.ProjectName, "test");
    EXPECT_EQ(session.runButton(), RunButtonState::Ready);
    messages.expectQuestion("WARNING: The run \"test\" is only in memory*", true);
    messages.onQuestion = [this] { watch_->look(); };
    session.runButtonPressed();
    EXPECT_EQ(volumesIn("replay"), 14);
    EXPECT_TRUE(session.report.runFinished && programEnd.statuses.empty());
    EXPECT_TRUE(QFile::exists(path("results/next.fmr")));
}

TEST(SettingsFileNames, NameNeighbours) {
    const std::tuple<QString, int, QString> cases[] = {{"a-b.c-09.vco", 1, "a-b.c-10.vco"},
                                                       {"run-9", 1, "run-10.vco"},
                                                       {"run-1.vco", -1, "run-0.vco"},
                                                       {"run-0.vco", -1, ""},
                                                       {"-3.vco", 1, "-4.vco"},
                                                       {".a-3", 1, ""},
                                                       {"run3.vco", 1, ""},
                                                       {"run-.vco", 1, ""},
                                                       {"", 1, ""},
                                                       {"run-2147483647.vco", 1, ""}};
    for (const auto& [name, step, neighbour] : cases)
        EXPECT_EQ(neighbourName(name, step), neighbour) << name.toStdString();
}

TEST(SettingsFileNames, CountUpToTheFirstGap) {
    const QStringList files{"/s/r-1.vco", "/s/r-2.vco", "/s/r-9.vco"};
    const auto isFile = [&](const QString& path) { return files.contains(path); };
    for (const auto& [name, count] : std::vector<std::pair<QString, int>>{
             {"r-9.vco", 2}, {"r-77.vco", 2}, {"q-1.vco", 0}, {"r1.vco", 0}, {"r-1", 0}})
        EXPECT_EQ(countRecordings("/s/", name, isFile), count) << name.toStdString();
}
