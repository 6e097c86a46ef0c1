// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/loop/session_fixture.h"

#include "volume/fmr_file.h"

#include <QFileInfo>
#include <QRegularExpression>

namespace {

class VolumeLoopTest : public SessionFixture {
protected:
    int savedVolumes() {
        const int volumes = ::savedVolumes(content("results/test.stc"), 8 * 8, 4, scriptedSample);
        FMRHeader header;
        EXPECT_TRUE(readFMRHeader(path("results/test.fmr"), header));
        EXPECT_EQ(header.NrOfVolumes, volumes);
        return volumes;
    }
};

} // namespace

TEST_F(VolumeLoopTest, CompleteRunPassesEveryStepInOrderAndIsSaved) {
    put("colours.txt", "30\n1 2 3\n4 999 -6\n7 8");
    writeSession(32, 2,
                 {{"ROIColorsFile:", "\"./colours.txt\""}, {"ShowGODlgAfterPreparation:", "1"}});
    messages.expectAnnouncement("Press return or click the GO button to start!");
    ProbeListener probe(session.listeners, ListenerPlace::PlugIn);
    probe.watched = [](int volume) { return volume == 20; };
    // Where events are processed, so that the operator sees what was shown and can stop the run:
    // before the loop, in the watched volume, and before the files are written.
    pump.setEventCost(1);
    const std::function<void()> noteEvents = [&] {
        const bool inLoop = session.phase.runActive();
        if ((!inLoop || session.report.currentVolume == 20) && probe.hooks.last() != "|")
            probe.hooks << "|";
        pump.after(1, noteEvents);
    };
    pump.after(1, noteEvents);
    script.atVolume = [&](int volume) {
        if (volume == 0) {
            EXPECT_EQ(progressLog(), "starting views") << "the first volume is shown";
        }
        session.requests.overlayVolumeMode = volume == 23 || volume == 24;
        session.requests.overlayAfterPreprocessing = volume != 24;
    };
    display.buttonStates.clear();
    bool drawn = false;
    probe.onSubjectDisplay = [&](int volume) {
        EXPECT_TRUE(session.phase.runActive());
        pump.pumpWait(volume == 20 ? 17 : 4);
        return drawn = volume >= 20;
    };
    session.runButtonPressed();

    EXPECT_EQ(probe.hooks.join(' '),
              "leaving | arrived | prepared | before 0 1 2 3 4 subject | 5 | 6 | 7 | end over |");
    EXPECT_TRUE(drawn);
    EXPECT_TRUE(display.logTexts[20].contains("FeedbackTime: <b>-1</b>"));
    EXPECT_TRUE(display.logTexts[21].contains("FeedbackTime: <b>17</b>"));
    EXPECT_TRUE(display.logTexts[22].contains("FeedbackTime: <b>4</b>"));
    const std::pair<int, const char*> ends[] = {{22, "First</body>"},
                                                {24, "Current-AfterPP</body>"},
                                                {25, "Current-BeforePP</body>"},
                                                {30, "First<br> Ready.<br></body>"}};
    for (const auto& [text, end] : ends)
        EXPECT_TRUE(display.logTexts[text].endsWith(QString("<br>OverlayOnVolume: ") + end));
    EXPECT_EQ(session.regionColors[1], (RgbColor{4, 255, 0}));
    EXPECT_EQ(session.regionColors[2], (RgbColor{40, 30, 255}));
    EXPECT_EQ(savedVolumes(), 30);
    EXPECT_EQ(display.buttonStates, (std::vector{RunButtonState::Running, RunButtonState::Finished,
                                                 RunButtonState::NoSettingsFile}));
    EXPECT_EQ(display.progress.back(), 100);
    for (const char* name : {"test.prt", "test.mps", "test.ctr", "test-firstvol.img"})
        EXPECT_GT(QFileInfo(path(QString("results/") + name)).size(), 0) << name;
    EXPECT_EQ(display.logTexts[1].section("<br>", 0, 0),
              "<body style=\"font-size:9pt\"> volume <b>1 (3)</b>,  elapsed time: <b>0.0</b> secs, "
              " <b>t</b> > <b>3</b>");
}

TEST_F(VolumeLoopTest, StopIsLookedAtAfterTheVolumeIsReadAndLeavesItOut) {
    for (const int stopAt : {0, 5}) {
        writeSession(32, 2);
        script.atVolume = [&](int volume) {
            if (volume == stopAt)
                session.runButtonPressed();
        };
        messages.expectInformation("RECORDING INTERRUPTED BY USER");
        session.runButtonPressed();
        EXPECT_EQ(session.report.interruptedAtVolume, stopAt - 1);
        EXPECT_FALSE(session.requests.interruptFlag);
        EXPECT_EQ(QFileInfo(path("results/test.stc")).size(), stopAt * 8 * 8 * 4 * 2);
    }
    EXPECT_EQ(messages.shownModeless().size(), 2) << "saved before anybody answers";
    // A stop that the time-out overtakes is left over: it stops the next run, and only that.
    script.atVolume = {};
    script.lastVolume = 5;
    ProbeListener probe(session.listeners, ListenerPlace::PlugIn);
    probe.onEndOfVolume = [&](int volume) {
        if (volume == script.lastVolume)
            session.runButtonPressed();
    };
    messages.expectWarning("TIME OUT ERROR: expected file did not arrive!");
    runAgain();
    script.lastVolume = Script().lastVolume;
    for (const bool stopped : {true, false}) {
        EXPECT_EQ(session.requests.interruptFlag, stopped);
        if (stopped)
            messages.expectInformation("RECORDING INTERRUPTED BY USER");
        runAgain();
        EXPECT_EQ(session.report.currentVolume == 29, !stopped);
    }
}

TEST_F(VolumeLoopTest, AListenerEndsTheRunAtAnyStepAndTheVolumeCounts) {
    ProbeListener probe(session.listeners, ListenerPlace::PlugIn);
    probe.watched = [](int volume) { return volume == 3; };
    for (const QString& last : QString("before 0 1 2 3 4 5 6 7").split(' ')) {
        SCOPED_TRACE(last.toStdString());
        const auto goesOn = [&](int volume) { return volume != 3 || probe.hooks.last() != last; };
        probe.hooks.clear();
        probe.onBeforeVolume = goesOn;
        probe.onStep = [&](VolumeStep, const VolumeAtHand& hand) { return goesOn(hand.volume); };
        writeSession(8, 2);
        session.runButtonPressed();
        EXPECT_EQ(probe.hooks.filter(QRegularExpression("before|[0-7]")).last(), last);
        EXPECT_EQ(savedVolumes(), 4);
        EXPECT_EQ(session.report.interruptedAtVolume, -1);
    }
}

TEST_F(VolumeLoopTest, TheProjectFileStatesWhatTheSettingsSay) {
    writeSession(8, 2,
                 {{"TR:", "1500"},
                  {"InterSliceTime:", "70"},
                  {"NrOfColumns:", "3"},
                  {"NrOfRows:", "2"},
                  {"SliceThickness:", "3.5"},
                  {"GapThickness:", "0.5"},
                  {"InplaneFoVX:", "32"},
                  {"InplaneFoVY:", "24"}});
    session.runButtonPressed();
    EXPECT_EQ(session.intake.watchFolder, path("incoming/"));
    FMRHeader header;
    ASSERT_TRUE(readFMRHeader(path("results/test.fmr"), header));
    EXPECT_EQ(std::pair(header.NrOfVolumes, header.NrOfSkippedVolumes), std::pair(6, 2));
    EXPECT_EQ(std::pair(header.TR, header.InterSliceTime), std::pair(1500.0f, 70.0f));
    EXPECT_EQ(std::pair(header.LayoutNColumns, header.LayoutNRows), std::pair(3, 2));
    EXPECT_EQ(std::pair(header.sliceThickness, header.sliceGap), std::pair(3.5f, 0.5f));
    EXPECT_EQ(std::pair(header.pixelSizeX, header.pixelSizeY), std::pair(4.0f, 3.0f));
    // Twice the mean length of the protocol's intervals, and the end of the first.
    EXPECT_EQ(std::pair(header.SegmentSize, header.SegmentOffset), std::pair(7, 3));
    EXPECT_EQ(header.ProtocolFiles, QStringList("test.prt"));
}

TEST_F(VolumeLoopTest, ForcedDelayHoldsEachVolumeToTheScannersCount) {
    writeSession(6, 2, {{"ForceTRDelay:", "1"}});
    script.millisecondsPerVolume = 100;
    std::vector<qint64> times;
    ProbeListener probe(session.listeners, ListenerPlace::Plots);
    probe.onStep = [&](VolumeStep step, const VolumeAtHand& hand) {
        if (step == VolumeStep::LoadRegions)
            times.push_back(pump.milliseconds());
        session.requests.startOffsetSeconds = hand.volume < 1 ? 0 : 1; // the next comes earlier
        return true;
    };
    session.runButtonPressed();
    ASSERT_EQ(times.size(), 4u);
    const qint64 expected[] = {100, 6000 - 9, 7000 - 9, 9000 - 9};
    for (size_t i = 1; i < times.size(); ++i)
        EXPECT_EQ(times[i] - times[0], expected[i] - expected[0]);
    // The shown value leaves the two skipped volumes out.
    EXPECT_TRUE(display.logTexts[2].contains("VolWaitTime: <b>1800</b>"));
}

TEST_F(VolumeLoopTest, ADelayThatIsGivenUpKeepsItsVolume) {
    writeSession(6, 2, {{"ForceTRDelay:", "1"}});
    pump.after(500, [this] { pump.giveUpWaiting(); });
    session.runButtonPressed();
    EXPECT_LE(pump.milliseconds(), 550);
    EXPECT_EQ(savedVolumes(), 2);
    EXPECT_EQ(session.report.interruptedAtVolume, 1);
}

TEST_F(VolumeLoopTest, StartFailuresSaySoAndLeaveTheButtonUsable) {
    const std::tuple<QMap<QString, QString>, MessageLevel, QString> cases[] = {
        {{{"StimulationProtocol:", "\"<none>\""}},
         MessageLevel::Critical,
         "ERROR: No conditions specified!"},
        {{{"StimulationProtocol:", "\"/nowhere/x.prt\""}},
         MessageLevel::Warning,
         "ERROR: Unable to open referenced protocol file > x.prt < for reading!"},
        {{{"NrOfVolumes:", "999999"}, {"NrOfSlices:", "4096"}},
         MessageLevel::Warning,
         "ERROR: This run needs 524.4 GB of memory, and *"}};
    for (const auto& [changes, level, text] : cases) {
        SCOPED_TRACE(text.toStdString());
        writeSession(16, 2, changes);
        display.calls.clear();
        programEnd.statuses.clear();
        messages.expect(level, text);
        session.runButtonPressed();
        EXPECT_TRUE(session.report.startFailed);
        EXPECT_TRUE(session.phase.isIdle());
        EXPECT_TRUE(QDir(path("results")).isEmpty());
        EXPECT_EQ(programEnd.statuses,
                  std::vector<int>(level == MessageLevel::Critical ? 1 : 0, 1));
    }
    writeSession(16, 2);
    session.makeReader = [](const IntakeContext&) { return nullptr; };
    messages.expectCritical("ERROR: Data type not supported!*");
    session.runButtonPressed();
    EXPECT_EQ(programEnd.statuses, std::vector{1});
}

TEST_F(VolumeLoopTest, ADesignThatCanNotBeFittedIsToldBeforeTheFirstVolume) {
    const std::tuple<const char*, QString, const char*, const char*> cases[] = {
        {"0", defaultProtocol().replace("10 14", "14 14"),
         "WARNING: The model will not hold these conditions*", ": Houses."},
        {"20", defaultProtocol(), "WARNING: These predictors can not be told apart*",
         ": Faces, Houses, Constant, DCT-1,"}}; // more predictors than volumes
    script.firstVolumeComes = false;
    for (const auto& [nrOfDriftTerms, protocol, text, names] : cases) {
        writeSession(16, 2, {{"DriftConfoundPredictors:", nrOfDriftTerms}}, protocol);
        messages.expectWarning(text);
        messages.expectWarning("TIME OUT: Expected first file did not arrive!");
        session.runButtonPressed();
        EXPECT_TRUE(messages.shownModeless().last().contains(names));
    }
}

TEST_F(VolumeLoopTest, InplanesShowWhereTheyCameAndTheRunGoesOnWithoutThem) {
    QDir().mkpath(path("inplanes"));
    writeSession(14, 2,
                 {{"OverlayInplaneData:",
                   "1\nOverlayInplaneFolder: \"./inplanes/\"\nOverlayInplaneDataType: ANALYZE_NW\n"
                   "OverlayInplaneFirstFileName: \"a.img\"\nOverlayInplaneMatrixSizeX: 16\n"
                   "OverlayInplaneMatrixSizeY: 24"}});
    messages.expectWarning("WARNING: The inplane images in \"" + path("inplanes/") +
                           "\" did not arrive*");
    session.runButtonPressed();
    EXPECT_EQ(session.requests.pendingOverlayInplane, -1);
    EXPECT_EQ(savedVolumes(), 12);

    put("inplanes/a.img", QByteArray(2 * 16 * 24 * 4, '\1'));
    runAgain();
    for (const bool reloaded : {false, true}) {
        ASSERT_TRUE(!reloaded || session.reloadData());
        EXPECT_EQ(session.requests.pendingOverlayInplane, 1);
        const std::vector<QImage>& inplanes = document().slices.InplanePixmaps;
        ASSERT_EQ(inplanes.size(), 4u);
        EXPECT_EQ(inplanes[3].size(), QSize(16, 24));
    }
    EXPECT_EQ(session.anatomicalDocument->anatomy.functional.name, "Inplanes");
    EXPECT_FALSE(QFile::exists(path("results/test_EPI.vmr"))) << "of the run before";
    ASSERT_TRUE(QFile::remove(path("results/test_Inplane.amr")));
    ASSERT_TRUE(session.reloadData());
    EXPECT_EQ(session.requests.pendingOverlayInplane, -1);
}

TEST_F(VolumeLoopTest, DataStayUntilTheOperatorHasAnsweredWhenTheFolderIsLost) {
    writeSession(16, 2);
    // The folder turns into a file while the run goes on; it is mended before the second attempt.
    script.atVolume = [&](int volume) {
        if (volume == 13) {
            QDir(path("results")).removeRecursively();
            put("results", "");
        }
    };
    for (const bool again : {false, true}) {
        messages.expectWarning("ERROR: Unable to open protocol file!");
        messages.expectWarning("ERROR: Can not open .AMR file for saving !");
        messages.expectWarning("ERROR: Can not write FMR time course (STC) files !");
        messages.expectCritical("ERROR: Unable to write map file*");
        messages.expectCritical("ERROR: Unable to open contrasts file \"*");
        messages.expectWarning("ERROR: Can not open .roi file for saving*");
        messages.expectWarning("ERROR: Unable to write table of times*");
        messages.expectWarning("ERROR: Can not open .VMR file for saving !");
        messages.expectCritical("Error: Can not open file to save first volume.");
        messages.expectQuestion("WARNING: The recorded data could not be saved completely in "
                                "folder*",
                                again);
        if (!again)
            messages.expectWarning("WARNING: This run is only in memory, since*");
        bool mended = false;
        messages.onQuestion = [&] { mended = QFile::remove(path("results")); };
        runAgain();
        EXPECT_TRUE(mended);
        EXPECT_EQ(session.report.savedCompletely, again);
        EXPECT_EQ(session.report.outcomeText.contains("<b>not saved completely</b>"), !again);
        EXPECT_EQ(session.report.onlyInMemory, !again) << "the journal went with the folder";
        messages.onQuestion = {};
        // What exists nowhere else is not replaced without a word.
        if (!again) {
            QFile::remove(path("results"));
            messages.expectQuestion("WARNING: The run \"test\" is only in memory*", true);
            EXPECT_TRUE(session.mayLeaveRun());
            EXPECT_EQ(savedVolumes(), 14);
            EXPECT_FALSE(session.report.onlyInMemory);
        }
    }
    // The protocol that could not be written at first is named all the same.
    EXPECT_TRUE(content("results/test.fmr").contains("\"test.prt\""));
}

TEST_F(VolumeLoopTest, AFileThatCanNotBeReadBackIsWrittenAgain) {
    writeSession(16, 2);
    constexpr int mapsAreWritten = 90;
    for (const char* name : {"results/test.prt", "results/test.mps"}) {
        bool lost = false;
        display.whileSaving = [&] {
            if (!lost && display.progress.back() == mapsAreWritten)
                lost = QFile::remove(path(name));
        };
        messages.expectQuestion("WARNING: The recorded data could not be saved completely*", true);
        runAgain();
        EXPECT_TRUE(lost && session.report.savedCompletely && QFile::exists(path(name))) << name;
    }
}

TEST_F(VolumeLoopTest, ContrastFileDecidesWhetherThereIsABaseline) {
    const auto file = [](const char* counts, const char* weights) {
        return QByteArray("FileVersion: 3 NrOfContrasts: 1 ") + counts +
               "\nContrastNames:\n\"A\"\nContrastVectors:\n" + weights +
               "\nInitialSelectionState:\n1\nContrastColors:\n1 2 3\n";
    };
    const QByteArray none = "NrOfValues: 4 BaselineInContrasts: 0 BaselinePosInProtocol: 0";
    const QByteArray first = "NrOfValues: 3 BaselineInContrasts: 1 BaselinePosInProtocol: 1";
    const QByteArray contradiction =
        "NrOfValues: 3 BaselineInContrasts: 1 BaselinePosInProtocol: 0";
    const std::tuple<QByteArray, QStringList, std::vector<int>> cases[] = {
        {file(none, " -1  1  0  0"), {"Fixation", "Faces", "Houses"}, {1, 0, 0, 0, 0}},
        {file(first, " -1  1  0"), {"Faces", "Houses"}, {1, 0, 0, 0}},
        {file(contradiction, " -1  0  1"), {"Faces", "Houses"}, {1, 0, 0, 0}}, // automatic ones
    };
    for (const auto& [text, conditions, weights] : cases) {
        writeSession(24, 2, {{"ContrastFile:", "\"" + path("run.ctr") + "\""}});
        put("run.ctr", text);
        if (text.contains(contradiction))
            messages.expectWarning("ERROR: Contrast file *");
        session.runButtonPressed();
        EXPECT_EQ(document().design.PredictorNames.mid(0, conditions.size()), conditions);
        EXPECT_EQ(document().contrasts.ContrastWeights[0], weights);
        // The columns belong to the names: the first condition that has one starts first.
        EXPECT_LT(document().design.PredictorOnsets[0], document().design.PredictorOnsets[1]);
    }
}

TEST_F(VolumeLoopTest, GoesOnWithoutAModelWhenMemoryDoesNotHoldTheMask) {
    writeSession(22, 2);
    script.atVolume = [&](int volume) {
        document().project.ResolutionX = volume == 0 ? 1 << 30 : 8;
    };
    messages.expectWarning("ERROR: Insufficient memory for creating contrast maps!");
    session.runButtonPressed();
    EXPECT_EQ(savedVolumes(), 20);
    EXPECT_TRUE(document().wholeRunModel.isValid()) << "fitted after the run";
}

TEST_F(VolumeLoopTest, SavedRunComesBackWithItsVolumesAndMaps) {
    // Ended early, and with drift terms whose columns depend on the planned length.
    writeSession(52, 2, {{"ClusterSizePixels:", "1"}, {"DriftConfoundPredictors:", "3"}});
    script.lastVolume = 39;
    messages.expectWarning("TIME OUT ERROR: expected file did not arrive!");
    session.runButtonPressed();
    const std::vector<float> maps = mapValues();
    EXPECT_TRUE(std::ranges::any_of(maps, [](float value) { return value > 0.0f; }));

    ASSERT_TRUE(session.reloadData());
    ASSERT_EQ(document().project.volumes.size(), 40u);
    for (size_t i = 0; i < document().project.volumes[0].size(); ++i)
        ASSERT_EQ(document().project.volumes[17][i], scriptedSample(i, 17));
    EXPECT_EQ(document().protocol.conditions[1].name, "Faces");
    EXPECT_EQ(document().volumeTables.VolumeConditionIndex[4], 1);
    EXPECT_TRUE(session.report.mapsPresent);
    EXPECT_EQ(session.volumesForPostprocessing(), 40);
    EXPECT_EQ(document().slices.SlicePixmaps.size(), 4u);
    EXPECT_TRUE(document().glm.ActivePredictors.empty()) << "the live model is no longer needed";
    EXPECT_EQ(document().maps.NrOfActiveContrasts, 2);
    EXPECT_EQ(mapValues(), maps);
}
