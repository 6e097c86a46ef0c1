// Regions of a whole session: drawn, followed, logged, saved, reloaded, in every phase.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/session/dragged_region.h"

class SessionRegionsTest : public SessionFixture {
protected:
    /// A run of 40 volumes in which the operator draws a region when volume `at` is over.
    void runWithRegionAt(int at) {
        writeSession(42, 2, {{"ClusterSizePixels:", "1"}});
        ProbeListener operatorHand(session.listeners, ListenerPlace::Dialogs);
        operatorHand.onEndOfVolume = [&, this](int volume) {
            if (volume == at) {
                EXPECT_TRUE(session.regions.selectRectangle(drag));
            }
            if (volume >= at && volume != endedAt_)
                expectCurve(volume);
        };
        session.runButtonPressed();
    }
    int endedAt_ = -1; ///< by a listener: its steps were left out

    RegionOfInterest& region() { return session.functionalDocument->regions[0]; }
    void expectCurve(int lastVolume) {
        ASSERT_EQ(region().CurrentTimePoint, lastVolume);
        for (int volume = 0; volume <= lastVolume; ++volume)
            ASSERT_NEAR(region().TimeCourseValues[size_t(volume)], measuredMean(volume), 1e-3)
                << volume;
    }
};

TEST_F(SessionRegionsTest, DrawnInMidRunItHasItsHistoryAndComesBackWithAReload) {
    // All voxels of the rectangle respond alike, so which of them a map shows doesn't matter.
    session.requests.thresholds.Threshold = 100.0f;
    runWithRegionAt(20);
    EXPECT_EQ(region().NrOfVoxels(), nrOfDraggedVoxels);
    const std::vector<float> betas = region().ROIBetas;
    ASSERT_TRUE(session.reloadData());
    ASSERT_EQ(session.regions.list()->count(), 1);
    expectCurve(39);
    ASSERT_EQ(region().ROIBetas.size(), betas.size());
    EXPECT_GT(region().predictorsInFit, 0) << "a reloaded region has its betas at once";
    for (size_t i = 0; i < betas.size(); ++i)
        EXPECT_NEAR(region().ROIBetas[i], betas[i], 1e-4 * std::abs(betas[i]));
}

TEST_F(SessionRegionsTest, TheVolumeAtWhichAListenerEndsTheRunCounts) {
    ProbeListener other(session.listeners, ListenerPlace::Views);
    endedAt_ = 9;
    other.onBeforeVolume = [this](int volume) { return volume != endedAt_; };
    runWithRegionAt(4);
    EXPECT_EQ(session.report.currentVolume, 9);
    expectCurve(9);
}

TEST_F(SessionRegionsTest, LogsFollowTheRegionsFromTheirFirstVolumeOn) {
    session.regions.setLog(&OperatorRequests::saveRTPs, true);
    session.regions.setLog(&OperatorRequests::saveROIBetaTimeCourses, true);
    runWithRegionAt(7);
    EXPECT_EQ(content("results/test-8.rtp"), "0 0\n") << "no region yet";
    const QList<QByteArray> words = content("results/test-9.rtp").simplified().split(' ');
    ASSERT_EQ(words.size(), 3);
    EXPECT_EQ(words[0], "1");
    EXPECT_NEAR(words[1].toDouble(), measuredMean(8), 1e-4);
    EXPECT_EQ(words[2].toInt(), session.functionalDocument->volumeTables.VolumeConditionIndex[8]);
    const QByteArray betas = content("results/test_ROI_betas.btc");
    EXPECT_EQ(betas.count("TimePoint:"), 40);
    EXPECT_EQ(betas.count("NrOfVoxels:     12\n"), 32);
    EXPECT_FALSE(QFile::exists(path("results/test_plots.ert"))) << "that log is off";
}

TEST_F(SessionRegionsTest, ALogThatCannotBeWrittenIsToldOfAndTheRunGoesOn) {
    session.regions.setLog(&OperatorRequests::saveROITimeCourses, true);
    writeSession(5, 2);
    ASSERT_TRUE(QDir().mkpath(path("results/test_plots.ert")));
    for (int volume = 0; volume < 3; ++volume)
        messages.expectWarning("ERROR: Can not open extended ROI time course file (.ERT) !");
    session.runButtonPressed();
    EXPECT_EQ(volumesIn("results"), 3);
}

TEST_F(SessionRegionsTest, TheChosenFileIsLoadedAtTheFirstVolumeAndAMissingOneIsToldOf) {
    runWithRegionAt(3);
    ASSERT_TRUE(QFile::rename(path("results/test.roi"), path("chosen.roi")));
    session.requests.preLoadROIFile = path("chosen.roi");
    int atFirstVolume = -1;
    ProbeListener probe(session.listeners, ListenerPlace::Plots);
    probe.onEndOfVolume = [&](int volume) {
        if (volume == 0)
            atFirstVolume = session.regions.list()->count();
    };
    runAgain();
    EXPECT_EQ(atFirstVolume, 1);
    session.requests.preLoadROIFile = path("missing.roi");
    messages.expectWarning("ERROR: Can not open .ROI file for loading*");
    runAgain();
    EXPECT_EQ(atFirstVolume, 0);
    EXPECT_EQ(volumesIn("results"), 40);
}

TEST_F(SessionRegionsTest, AFileCanNotAskForEndlessWork) {
    runWithRegionAt(3);
    QByteArray text = "FileVersion: 5 SaveVoxelsInROIs: 0 NrOfTCPlots: 1 NrOfTCs: 20\n";
    for (int i = 0; i < 20; ++i)
        text += "FromSlice: 2 Left: -2147483648 Right: 2147483647 Top: 9 Bottom: 1\n";
    put("whole.roi", text);
    session.requests.thresholds.ClusterSizePixels = 0;
    session.settings.MultiSliceROISelection = 99; // each region is the whole volume
    messages.expect(MessageLevel::Warning,
                    "WARNING: The regions of interest have more voxels than 8 whole volumes. The "
                    "last 12 regions are left out.");
    ASSERT_TRUE(session.regions.load(path("whole.roi")));
    ASSERT_EQ(session.regions.list()->count(), 8);
    EXPECT_EQ((*session.regions.list())[7].NrOfVoxels(), 8 * 8 * 4);
    EXPECT_EQ(messages.shown(), messages.shownModeless()) << "the run could be replaced meanwhile";
}

TEST_F(SessionRegionsTest, RegionsChangeOnlyWhileTheSessionIsIdleOrRecords) {
    EXPECT_FALSE(session.regions.selectRectangle(drag)) << "no document";
    EXPECT_FALSE(session.regions.load(path("any.roi")));
    session.regions.removeAll();
    EXPECT_EQ(session.regions.list(), nullptr);
    display.whileSaving = [&] { EXPECT_FALSE(session.regions.selectRectangle(drag)); };
    display.whenStarting = [&] { EXPECT_FALSE(session.regions.selectRectangle(drag)); };
    runWithRegionAt(5);
    EXPECT_TRUE(session.regions.selectRectangle(drag));
    EXPECT_FALSE(session.regions.selectRectangle({1, 3, 3, 0, 8})) << "no width";
    EXPECT_EQ(session.regions.list()->count(), 2);
    session.regions.removeAll();
    EXPECT_TRUE(session.regions.list()->empty());
}

TEST_F(SessionRegionsTest, TheBestVoxelsAreSwitchedBeforeDuringAndAfterARun) {
    struct Heard : RunListener {
        int records = 0, changes = 0;
        void recordMade(const RunRecord&) override { ++records; }
        void regionsChanged(QtCortivoDoc&) override { ++changes; }
    } heard;
    session.listeners.add(heard, ListenerPlace::Views);
    SessionRegions& regions = session.regions;
    regions.changeBestROIVoxelsRatio(0.5f); // they hold for the regions to come
    regions.changeTopVoxelSelectionMode(0);
    regions.enableDynamicROIs(true);
    writeSession(42, 2, {{"ClusterSizePixels:", "1"}});
    ProbeListener operatorHand(session.listeners, ListenerPlace::Dialogs);
    operatorHand.onEndOfVolume = [&](int volume) {
        if (volume == 3) {
            EXPECT_TRUE(regions.selectRectangle(drag));
        }
        if (volume != 30)
            return;
        EXPECT_EQ(region().SortedVoxelList.size(), size_t(nrOfDraggedVoxels));
        EXPECT_EQ(region().TopVoxelSelectionMode, 0);
        heard.records = heard.changes = 0;
        regions.enableDynamicROIs(false);
        regions.changeTopVoxelSelectionMode(allPredictors);
        regions.changeBestROIVoxelsRatio(0.1f);
        EXPECT_EQ(heard.records, 3);
        EXPECT_EQ(heard.changes, 2);
        EXPECT_TRUE(region().SortedVoxelList.empty());
    };
    session.runButtonPressed();
    EXPECT_TRUE(region().SortedVoxelList.empty());
    EXPECT_EQ(region().TopVoxelSelectionMode, allPredictors);
    EXPECT_EQ(region().TopVoxelRatio, 0.1f);
    expectCurve(39); // as it is measured, until a choice is made in an idle session

    heard.changes = 0;
    regions.enableDynamicROIs(false);
    EXPECT_EQ(region().TimeCourseValues[5], float(std::round(measuredMean(5))));
    region().SortedVoxelList = {2, 1, 0};
    regions.enableDynamicROIs(true);
    const size_t third = size_t(64 * drag.slice + 8 * drag.top + drag.left + 2);
    EXPECT_EQ(region().TimeCourseValues[39], float(scriptedSample(third, 39)));
    EXPECT_EQ(region().SortedVoxelList.size(), 3u) << "the ranking of the run stays";
    regions.changeBestROIVoxelsRatio(1.0f);
    EXPECT_EQ(region().TimeCourseValues[39], float(std::round(measuredMean(39))));
    EXPECT_EQ(heard.changes, 3);
}
