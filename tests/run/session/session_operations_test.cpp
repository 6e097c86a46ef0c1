// Every operation of the operator in every phase of a session.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/classify_data.h"
#include "run/loop/session_fixture.h"
#include "stats/clusters.h"
#include "stats/thresholds.h"
#include "stats/whole_run_maps.h"

namespace {

class SessionOperations : public SessionFixture {
protected:
    SessionOperations() {
        writeSession(32, 2);
        session.runButtonPressed(); // there is a run in memory and on disk
    }
    QtCortivoDoc& document() { return *session.functionalDocument; }
    /// The sizes of the clusters that are shown are those of the maps and the thresholds.
    void expectClusters() {
        StatisticalMaps& maps = document().maps;
        const auto shown = maps.ClusterSizeSlices;
        computeClusterSizes(maps, session.requests.thresholds,
                            document().contrasts.ConjunctionAnalysis);
        EXPECT_EQ(shown, maps.ClusterSizeSlices);
    }
};

} // namespace

TEST_F(SessionOperations, BeginAndStopWorkOnlyWhereTheyMay) {
    Reporter silent;
    put("results/VoxelsUsedForTraining.txt", "FileVersion:   1\n\nNrOfVoxels: 2\n\n1 1 1\n2 2 2\n");
    ASSERT_TRUE(modelOf({1, -1}, 2).save(path("one.svm")));
    session.classifier.chooseModel(path("one.svm"));
    put("curves.rtc", "NrOfRTCs: 3\nNrOfValues: 2\n" +
                          QByteArray("VOI\nA: 1 B: 2 C: 3 D: 4 E: 5 F: 6\n100\n101\n").repeated(3));
    const DecoderPreparation offline = offlinePreparation(path("curves.rtc"));
    const std::set<Phase> idle{Phase::Idle};
    const std::set<Phase> stoppable{Phase::Preparing, Phase::Recording};
    const std::set<Phase> others{Phase::Idle, Phase::Saving, Phase::Reloading,
                                 Phase::PostProcessing, Phase::Analysing};
    std::set<Phase> always = others;
    always.insert(stoppable.begin(), stoppable.end());
    const auto stops = [&] { return std::exchange(session.requests.interruptFlag, false); };
    // Does it, and tells whether anything came of it; and where something does.
    const std::tuple<const char*, std::function<bool()>, std::set<Phase>> operations[] = {
        {"run button starts",
         [&] {
             const auto before = display.calls.count("starting");
             session.runButtonPressed();
             stops();
             return display.calls.count("starting") > before;
         },
         idle},
        {"run button stops",
         [&] {
             const bool wasIdle = session.phase.isIdle();
             session.requests.forceTRDelay = true;
             session.runButtonPressed();
             return stops() && !session.requests.forceTRDelay && !wasIdle;
         },
         stoppable},
        {"stop", [&] { return session.requestStop(), stops(); }, stoppable},
        {"reload", [&] { return session.reloadData(); }, idle},
        {"post-processing", [&] { return postprocess(silent); }, idle},
        {"offer post-processing", [&] { return session.volumesForPostprocessing() == 30; }, idle},
        {"choice of the statistic",
         [&] {
             return session.changeShownStatistic(ShownStatistic::T, -1) &&
                    session.changeOneSidedTesting(false);
         },
         idle},
        {"prediction by a classifier",
         [&] {
             session.classifier.toggleIncrementalPrediction();
             const bool on = session.classifier.isPredicting();
             if (on)
                 session.classifier.toggleIncrementalPrediction();
             return on && !session.classifier.isPredicting();
         },
         always},
        {"preparation of the letter decoder",
         [&] {
             return session.decoder.prepare(offline) &&
                    session.decoder.reloadROIDataForOfflineAnalysis();
         },
         always},
        {"another letter, or volume of a file",
         [&] {
             session.decoder.reloadROIDataForOfflineAnalysis();
             session.decoder.goToNextLetter();
             session.decoder.goToNextLetter();
             session.decoder.goToPreviousLetter();
             const bool goes = session.decoder.decoder().currentLetter() == 0;
             EXPECT_EQ(session.decoder.letterHindrance().isEmpty(), goes);
             return session.decoder.nextTR() && goes;
         },
         others},
        {"responses for the letter decoder",
         [&] { return session.decoder.responsesHindrance().isEmpty(); }, others},
        {"active for plug-ins", [&] { return session.phase.runActive(); }, {Phase::Recording}},
        {"warnings wait for nobody",
         [&] { return session.messagesAreModeless(MessageLevel::Warning); },
         {Phase::Recording, Phase::Saving, Phase::Analysing}},
        {"nor do errors",
         [&] { return session.messagesAreModeless(MessageLevel::Critical); },
         {Phase::Saving, Phase::Analysing}},
    };
    for (const auto& [operation, works, phases] : operations)
        for (const auto& [phase, name] : phaseNames) {
            SCOPED_TRACE(std::string(operation) + ", " + name);
            bool worked = false;
            inPhase(phase, [&, &act = works] { worked = act(); });
            EXPECT_EQ(worked, phases.contains(phase));
        }
}

// A change is on the maps once the session is idle, whenever it was made.
TEST_F(SessionOperations, ControlsTakeEffectInEveryPhase) {
    const std::pair<const char*, std::function<void()>> operations[] = {
        {"threshold", [&] { session.changeThreshold(0.5f); }},
        {"cluster size", [&] { session.changeClusterSize(2); }},
        {"contrast",
         [&] {
             toggleContrast(document().contrasts, 1, ContrastPositive);
             session.contrastsChanged();
         }},
        {"conjunction", [&] {
             EXPECT_TRUE(session.changeConjunction(!document().contrasts.ConjunctionAnalysis));
         }}};
    for (const auto& [operation, change] : operations)
        for (const auto& [phase, name] : phaseNames) {
            if (phase == Phase::Preparing)
                continue; // there are no maps yet
            SCOPED_TRACE(std::string(operation) + ", " + name);
            writeSession(32, 2);
            runAgain();
            inPhase(phase, [&, &act = change] {
                if (document().contrasts.NrOfContrasts > 0)
                    act();
            });
            const std::vector<int> contrastOfMap = document().maps.contrastOfMap;
            ASSERT_TRUE(computeContrastMaps(document().wholeRunModel, document().mask,
                                            document().contrasts, document().maps));
            expectClusters();
            EXPECT_EQ(contrastOfMap, document().maps.contrastOfMap);
            EXPECT_FALSE(document().contrasts.ContrastsChanged);
        }
}

TEST_F(SessionOperations, FAndConjunctionExcludeEachOther) {
    ContrastDefinitions& contrasts = document().contrasts;
    EXPECT_TRUE(session.changeConjunction(true));
    EXPECT_TRUE(session.changeShownStatistic(ShownStatistic::FOfSelected, -1));
    EXPECT_FALSE(contrasts.ConjunctionAnalysis);
    EXPECT_EQ(document().maps.NrOfShownMaps, 1);
    EXPECT_TRUE(session.panelText().contains("<b>F</b>(2,26) = ")) << "30 volumes, 4 columns";
    messages.expectInformation("INFO: The conjunction is one of t maps*");
    EXPECT_FALSE(session.changeConjunction(true));

    const std::vector<float> ofTwo(document().maps.map(0).begin(), document().maps.map(0).end());
    ASSERT_TRUE(toggleContrast(contrasts, 1, ContrastPositive));
    session.contrastsChanged();
    EXPECT_EQ(document().maps.MapDF1, 1) << "of the one that is left";
    EXPECT_FALSE(session.changeShownStatistic(ShownStatistic::FOfContrast, 9)) << "there is none";
    EXPECT_EQ(contrasts.shownStatistic, ShownStatistic::FOfSelected);
    EXPECT_TRUE(session.changeShownStatistic(ShownStatistic::FOfContrast, 1));
    EXPECT_EQ(contrasts.ContrastSelectionStates, (std::vector<int>{0, 1, 0}));
    EXPECT_FALSE(std::ranges::equal(document().maps.map(0), ofTwo));
    EXPECT_TRUE(session.changeShownStatistic(ShownStatistic::T, -1));
    EXPECT_EQ(document().maps.MapType, MapKind::T);
    EXPECT_TRUE(session.changeOneSidedTesting(true));
    EXPECT_TRUE(std::ranges::all_of(document().maps.map(0), [](float t) { return t >= 0.0f; }));
    document().wholeRunModel.release();
    EXPECT_FALSE(session.changeShownStatistic(ShownStatistic::FOfSelected, -1)) << "no model";
}

TEST_F(SessionOperations, AChangeWhileTheLastVolumeIsAwaitedIsOnTheMaps) {
    script.lastVolume = 20;
    script.millisecondsPerVolume = 10;
    pump.after(215, [&] {
        EXPECT_TRUE(session.phase.runActive());
        EXPECT_EQ(session.report.currentVolume, 20);
        session.showOnCurrentVolume();
        session.showOnFirstVolume();
        session.changeThreshold(0.5f);
    });
    messages.expectWarning("TIME OUT ERROR: expected file did not arrive!");
    runAgain();
    expectClusters();
    EXPECT_FALSE(session.requests.overlayReset);
}

TEST_F(SessionOperations, WithoutADocumentTheControlsDoNothing) {
    bool looked = false;
    pump.after(0, [&] {
        looked = session.functionalDocument == nullptr;
        session.changeThreshold(1.0f);
        session.changeColorMaxThreshold(1.0f);
        session.changeClusterSize(9);
        session.contrastsChanged();
        session.changeColorCoding(true);
        session.showOnFirstVolume();
        EXPECT_FALSE(session.changeConjunction(true));
        EXPECT_TRUE(session.panelText().isEmpty());
    });
    runAgain();
    EXPECT_TRUE(looked);
    EXPECT_FALSE(session.functionalDocument->SignificanceColorCoding);
}

TEST_F(SessionOperations, ColorsFollowCodingAndContrastsAndEachChangeRepaints) {
    document().contrasts.ContrastColors[0] = {1, 2, 3};
    display.calls.clear();
    session.contrastsChanged();
    const OverlayColorTable colors = document().overlayColors.active;
    EXPECT_EQ(colors[0], (RgbColor{1, 2, 3}));
    session.changeColorCoding(true);
    EXPECT_EQ(document().overlayColors.active, significanceColors());
    session.changeColorCoding(false);
    EXPECT_EQ(document().overlayColors.active, colors);
    session.changeThreshold(4.5f);
    session.changeColorMaxThreshold(11.0f);
    EXPECT_TRUE(session.changeConjunction(true));
    EXPECT_EQ(progressLog(), "views views views views views views");
}

TEST_F(SessionOperations, ALicenceThatDoesNotPermitKeepsTheRunFromStarting) {
    session.setRunButton(RunButtonState::Ready);
    display.calls.clear();
    for (const bool permitted : {false, true}) {
        session.licencePermits = [permitted] { return permitted; };
        session.runButtonPressed();
        EXPECT_EQ(display.calls.contains("starting"), permitted);
    }
}

TEST_F(SessionOperations, ARunHoldsItsTargetFolderOrAsks) {
    FolderLock other;
    const auto isFree = [&] {
        const bool taken = other.take(path("results"));
        other.release();
        return taken;
    };
    for (const Phase phase : {Phase::Idle, Phase::Recording, Phase::Saving, Phase::Idle})
        inPhase(phase, [&] { EXPECT_EQ(isFree(), phase == Phase::Idle); });
    put("results/velo-cortivo.lock", "77\nvelo-cortivo\nelsewhere\nanother computer\n");
    for (const bool answer : {false, true}) {
        messages.expectQuestion("WARNING: Another Velo-Cortivo (process 77 on host elsewhere) *",
                                answer);
        runAgain();
        EXPECT_EQ(session.report.startFailed, !answer);
        EXPECT_EQ(session.report.currentVolume, answer ? 29 : -1);
    }
    EXPECT_TRUE(isFree()) << "taken over";
}

TEST_F(SessionOperations, BackgroundFollowsTheChosenVolume) {
    const SliceImages& slices = document().slices;
    const QImage first = slices.SlicePixmaps[1].copy();

    // In a run the next volume takes the request up, between runs it is carried out at once.
    inPhase(Phase::Recording, [&] { session.showOnCurrentVolume(); });
    EXPECT_NE(document().slices.SlicePixmaps[1], first);
    inPhase(Phase::Recording, [&] { session.showOnFirstVolume(); });
    EXPECT_EQ(document().slices.SlicePixmaps[1], first);
    inPhase(Phase::Recording, [&] { session.showOnCurrentVolume(); });
    session.showOnFirstVolume();
    EXPECT_EQ(document().slices.SlicePixmaps[1], first);
    EXPECT_FALSE(session.requests.overlayReset);

    int& inplane = session.requests.pendingOverlayInplane;
    session.showOnInplanes();
    EXPECT_EQ(inplane, -1) << "there are none";
    for (const bool current : {false, true}) {
        inplane = 1;
        current ? session.showOnCurrentVolume() : session.showOnFirstVolume();
        EXPECT_EQ(std::pair(inplane, session.requests.overlayVolumeMode),
                  std::pair(0, int(current)));
    }
}

// The file of the next run is read while the last one is looked at.
TEST_F(SessionOperations, TheModelOfARunIsThatOfItsOwnSettings) {
    const auto drawRegion = [&] {
        EXPECT_TRUE(session.regions.selectRectangle({1, 2, 6, 1, 5}));
        return document().regions[document().regions.count() - 1].ROIBetas;
    };
    const std::vector<float> betas = drawRegion();
    ASSERT_FALSE(betas.empty());
    put("other-1.vco", content("test-1.vco")
                           .replace("NrOfVolumes:                      32",
                                    "NrOfVolumes:                      99"));
    session.returnToSettingsFile(path("other-1.vco")); // as after a replay
    ASSERT_TRUE(session.inspectSettings());
    ASSERT_EQ(session.settings.NrOfVolumes, 99);
    session.settings.DriftConfoundPredictors = 4;
    EXPECT_EQ(drawRegion(), betas);
}

TEST_F(SessionOperations, OutcomeStandsUntilSomethingNewer) {
    EXPECT_TRUE(display.logTexts.last().contains("Recorded data saved as \"<b>test</b>\"."));
    EXPECT_TRUE(session.panelText().startsWith(" volume <b>30</b>"));
    session.report.savedCompletely = false;
    ProbeListener probe(session.listeners, ListenerPlace::Views);
    ASSERT_TRUE(session.reloadData());
    EXPECT_EQ(probe.hooks.join(' '), "leaving arrived prepared");
    EXPECT_TRUE(session.report.runFinished && session.report.savedCompletely);
    EXPECT_EQ(session.runButton(), RunButtonState::NoSettingsFile);
    EXPECT_TRUE(display.logTexts.last().contains("loaded from disk"));
    session.changeSettingsFile(path("other-1.vco"));
    EXPECT_EQ(probe.hooks.last(), "changed");
    EXPECT_TRUE(session.report.outcomeText.isEmpty());
    EXPECT_EQ(session.volumesForPostprocessing(), 0);
}

TEST_F(SessionOperations, AReloadThatFailsLeavesNothingOfTheRunBefore) {
    QFile::remove(path("results/test.ctr"));
    put("results/test.prt",
        defaultProtocol().section("NrOfConditions:", 0, 0).toUtf8() + "NrOfConditions: 0\n");
    const std::tuple<QString, MessageLevel, QString> cases[] = {
        {"", MessageLevel::Critical, "ERROR: No conditions specified!"},
        {"test.prt", MessageLevel::Warning, "ERROR: Unable to open referenced protocol file*"},
        {"test.fmr", MessageLevel::Warning, "ERROR - Can not open FMR file: *"}};
    for (const auto& [file, level, text] : cases) {
        SCOPED_TRACE(text.toStdString());
        writeSession(32, 2, {{"StimulationProtocol:", "\"<none>\""}});
        QFile::remove(path("results/" + file));
        messages.expect(level, text);
        EXPECT_FALSE(session.reloadData());
        EXPECT_TRUE(session.report.startFailed);
        EXPECT_EQ(session.report.currentVolume, -1);
        EXPECT_FALSE(session.report.mapsPresent);
    }
    session.settings.settingsFilePath.clear();
    EXPECT_FALSE(session.reloadData()) << "without a word";
}

// Post-processing changes the samples.
TEST_F(SessionOperations, ARunThatIsOnlyInMemoryIsSavedBeforeItIsPostProcessed) {
    const QByteArray measured = content("results/test.stc");
    ASSERT_TRUE(QFile::remove(path("results/test.stc")));
    session.report.onlyInMemory = true;
    messages.expectQuestion("WARNING: The run \"test\" is only in memory*", true);
    Reporter silent;
    EXPECT_TRUE(postprocess(silent));
    EXPECT_TRUE(content("results/test.stc") == measured);
}

// The question has an event loop of its own, in which the timer looks and buttons are pressed.
TEST_F(SessionOperations, TheQuestionAboutARunInMemoryIsAskedOnceAndStopsEverythingElse) {
    const auto nrOfRuns = [this] { return display.calls.count("starting"); };
    Reporter silent;
    for (const bool answer : {true, false}) {
        session.report.onlyInMemory = true;
        QFile::remove(path("results/test.stc"));
        messages.expectQuestion("WARNING: The run \"test\" is only in memory*", answer);
        messages.onQuestion = [&] {
            const auto before = nrOfRuns();
            session.setRunButton(RunButtonState::Finished);
            session.runButtonPressed();
            EXPECT_FALSE(session.mayLeaveRun() || session.reloadData() || postprocess(silent));
            EXPECT_EQ(nrOfRuns(), before);
        };
        EXPECT_TRUE(session.mayLeaveRun());
        EXPECT_EQ(QFile::exists(path("results/test.stc")), answer);
    }
    // What the answer was about has changed: the run is safe, the session busy, the program ends.
    const std::tuple<const char*, std::function<void()>, bool> events[] = {
        {"saved", [this] { session.report.onlyInMemory = false; }, true},
        {"busy", [this] { session.phase.enter(Phase::Analysing); }, false},
        {"ends",
         [this] {
             pump.giveUpWaiting();
             EXPECT_TRUE(session.mayLeaveRun());
             EXPECT_TRUE(QFile::remove(path("results/test.stc"))) << "that saved it";
         },
         false}};
    for (const auto& [name, event, mayLeave] : events) {
        SCOPED_TRACE(name);
        session.phase.enter(Phase::Idle);
        session.report.onlyInMemory = true;
        messages.expectQuestion("WARNING: The run \"test\" is only in memory*", true);
        messages.onQuestion = event;
        EXPECT_EQ(session.mayLeaveRun(), mayLeave);
        EXPECT_FALSE(QFile::exists(path("results/test.stc")));
    }
    session.phase.enter(Phase::Idle);
}

TEST_F(SessionOperations, PostProcessingTakesTheVolumesThatAreThereAfterTheQuestion) {
    session.report.onlyInMemory = true;
    messages.expectQuestion("WARNING: The run \"test\" is only in memory*", false);
    messages.onQuestion = [this] { session.report.currentVolume = -1; };
    Reporter silent;
    EXPECT_FALSE(postprocess(silent));
}
