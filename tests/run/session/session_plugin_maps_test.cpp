// Maps of a plug-in in whole runs; a listener of the test stands in for the plug-in.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/loop/session_fixture.h"

namespace {

constexpr size_t voxels = 8 * 8 * 4;
constexpr size_t filled = 64 + 8 * 2 + 3; ///< x 3, y 2 of slice 1

/// Fills the maps at the end of each volume, as a plug-in does.
class MapFiller : public ProbeListener {
public:
    using ProbeListener::ProbeListener;
    int recorded = 0; ///< of the maps
    std::vector<float> thresholdsShown;
    void recordMade(const RunRecord& record) override { recorded += record.name == "maps"; }
    void pluginThresholdApplied(float shown) override { thresholdsShown.push_back(shown); }
};

} // namespace

class SessionPluginMapsTest : public SessionFixture {
protected:
    SessionPluginMaps& maps() { return session.pluginMaps; }
    const OverlayThresholds& thresholds() { return session.requests.thresholds; }
    MapFiller plugin_{session.listeners, ListenerPlace::PlugIn};
};

TEST_F(SessionPluginMapsTest, ARunShowsThemFromTheVolumeAtWhichTheyAreFilled) {
    writeSession(12, 2, {{"MultiSliceROISelection:", "1"}});
    ASSERT_TRUE(maps().registerMaps(3));
    maps().setState(1, 2);
    maps().setThreshold(4.0f);
    maps().show(true);
    session.regions.setSelectOnlyMapVoxels(true);
    plugin_.onStep = [this](VolumeStep step, const VolumeAtHand& hand) {
        const std::span<float> values = hand.document.pluginMaps.PluginMaps.span();
        EXPECT_EQ(values.size(), 3 * voxels);
        if (step != VolumeStep::AfterModel || values.size() != 3 * voxels)
            return true;
        EXPECT_EQ(values[filled] == 0.0f, hand.volume == 0) << "zeroed for the run";
        values[filled] = std::numeric_limits<float>::quiet_NaN();
        values[voxels + filled] = -4.0f;
        values[2 * voxels + filled + 1] = 9.0f; // of a map that is not shown
        maps().updateList();
        display.calls.clear();
        return true;
    };
    ProbeListener operatorHand(session.listeners, ListenerPlace::Dialogs);
    operatorHand.onEndOfVolume = [this](int volume) {
        EXPECT_EQ(progressLog(), "views") << volume << ": with or without a model";
        if (volume != 1)
            return;
        EXPECT_TRUE(display.logTexts.last().contains("<b>map</b> > <b>4</b><br>"));
        ASSERT_TRUE(session.regions.selectRectangle({1, 2, 6, 1, 4}));
        const int before = plugin_.recorded;
        maps().setThreshold(9.5f);
        EXPECT_EQ(plugin_.recorded, before + 1) << "as if by the operator";
        EXPECT_EQ(std::pair(thresholds().Threshold, thresholds().ColorMaxThreshold),
                  std::pair(9.5f, 10.5f));
        maps().setThreshold(std::numeric_limits<float>::quiet_NaN());
    };
    session.runButtonPressed();
    EXPECT_EQ(plugin_.thresholdsShown, (std::vector{4.0f, 10.5f})) << "the upper one was raised";
    ASSERT_EQ(session.regions.list()->count(), 1);
    EXPECT_EQ((*session.regions.list())[0].NrOfVoxels(), 1);
    EXPECT_TRUE(session.panelText().contains("<br> <b>map</b> > <b>9.50</b><br>"));
    maps().show(false);
    EXPECT_TRUE(session.panelText().contains("Threshold: <b>t</b>"));
    // They come back with a reload, empty, and with the threshold of the plug-in.
    plugin_.thresholdsShown.clear();
    ASSERT_TRUE(session.reloadData());
    EXPECT_EQ(session.functionalDocument->pluginMaps.map(2)[filled + 1], 0.0f);
    EXPECT_EQ(plugin_.thresholdsShown, std::vector{10.5f});
    for (const auto& change : {std::function<void()>([this] { maps().toggleState(2, 1); }),
                               {[this] { maps().showAlone(1); }},
                               {[this] { maps().show(true); }},
                               {[this] { maps().clear(); }}}) {
        display.calls.clear();
        change();
        EXPECT_EQ(progressLog(), "views");
    }
    // The next plug-in doesn't find what this one has left.
    EXPECT_EQ(session.functionalDocument->pluginMaps.NrOfPluginMaps, 0);
    EXPECT_TRUE(session.functionalDocument->pluginMaps.PluginMaps.empty());
    // Between two documents.
    session.listeners.documentsLeaving();
    display.calls.clear();
    maps().show(true);
    maps().setThreshold(3.0f);
    EXPECT_EQ(progressLog(), "");
    EXPECT_EQ(thresholds().Threshold, 9.5f);
}

TEST_F(SessionPluginMapsTest, TooManyKeepARunFromStartingUntilThePluginIsClosed) {
    writeSession(12, 2);
    const char* told =
        "ERROR: The plug-in has registered 2147483647 maps, which need 2199.0 GB of "
        "memory. There is not that much.\n\nClose the window of the plug-in and start "
        "again.";
    ASSERT_TRUE(maps().registerMaps(std::numeric_limits<int>::max()));
    messages.expectWarning(told);
    session.runButtonPressed();
    EXPECT_TRUE(session.report.startFailed);
    maps().show(true);
    maps().clear();
    EXPECT_FALSE(session.requests.pluginMaps.shown);
    session.runButtonPressed();
    EXPECT_EQ(volumesIn("results"), 10);
    EXPECT_EQ(plugin_.thresholdsShown, std::vector<float>());
    EXPECT_EQ(session.functionalDocument->pluginMaps.NrOfPluginMaps, 0);
    ASSERT_TRUE(maps().registerMaps(std::numeric_limits<int>::max()));
    messages.expectWarning(told);
    EXPECT_FALSE(session.reloadData());
    maps().clear();
    // A plug-in shows maps that it never registered.
    maps().show(true);
    EXPECT_TRUE(session.reloadData());
    EXPECT_FALSE(session.requests.pluginMaps.shown);
}
