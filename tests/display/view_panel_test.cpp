// What the operator does on the slices during a run.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/view_panel.h"

#include "display/qt_cortivo_view.h"
#include "run/loop/session_fixture.h"

#include <QTest>

class ViewPanelTest : public SessionFixture {
protected:
    QtCortivoView& view() { return *panel.findChild<QtCortivoView*>("FunctionalView"); }
    /// The view paints itself, as it would before the operator's next action.
    QtCortivoView& paintedView() {
        (void)view().grab();
        return view();
    }
    QPoint at(int slice, int x, int y) {
        const MosaicTiles tiles = paintedView().tiles();
        const int place = placeOfSlice(tiles.layout, slice, tiles.nrOfSlices);
        return tiles.areaOf(place, {x, y, 1, 1}).center().toPoint();
    }
    void drag(int slice, QPoint from, QPoint to) {
        QTest::mousePress(&view(), Qt::LeftButton, {}, at(slice, from.x(), from.y()));
        QTest::mouseMove(&view(), at(slice, to.x(), to.y()));
        QTest::mouseRelease(&view(), Qt::LeftButton, {}, at(slice, to.x(), to.y()));
    }
    QWidget window;
    ViewPanel panel{session, &window};
};

TEST_F(ViewPanelTest, RegionsAreDrawnWhileVolumesArrive) {
    session.requests.thresholds.Threshold = 100.0f;
    window.resize(620, 520);
    panel.resize(600, 500);
    window.show();
    writeSession(42, 2, {{"MultiSliceROISelection:", "1"}});
    ProbeListener operatorHand(session.listeners, ListenerPlace::Dialogs);
    operatorHand.onEndOfVolume = [this](int volume) {
        panel.update(true);
        if (volume == 10) {
            const QImage before = paintedView().mosaic();
            drag(1, {2, 1}, {5, 3});
            EXPECT_NE(paintedView().mosaic(), before) << "its voxels are marked at once";
            const QImage all = paintedView().mosaic();
            session.functionalDocument->regions[0].SortedVoxelList = {3};
            session.functionalDocument->regions[0].TopVoxelRatio = 0.1f;
            session.requests.regions.BestVoxelSelection = true;
            panel.update(true);
            EXPECT_NE(paintedView().mosaic(), all) << "only the voxels in use";
            session.requests.regions.BestVoxelSelection = false;
            panel.setROIDisplayStyle(RoiDisplayStyle::Rectangles);
            EXPECT_EQ(paintedView().mosaic(), before);
            const QImage oneSlice = view().grab().toImage();
            session.settings.MultiSliceROISelection = 3;
            panel.update(true);
            EXPECT_NE(view().grab().toImage(), oneSlice);
        }
        if (volume == 20)
            QTest::mouseClick(&view(), Qt::LeftButton, {}, at(1, 2, 1));
        const size_t voxel = 64 + 8 + 2;
        if (volume >= 21) {
            session.requests.overlayVolumeMode = volume == 21 ? 0 : 1;
            panel.update(true);
            EXPECT_TRUE(view().readOutText().startsWith(
                QString("x 3  y 2  slice 2   %1: %2")
                    .arg(volume == 21 ? QString("first volume as read")
                                      : QString("volume %1").arg(volume + 1))
                    .arg(scriptedSample(voxel, volume == 21 ? 0 : volume))))
                << view().readOutText().toStdString();
        }
    };
    session.runButtonPressed();
    ASSERT_EQ(session.regions.list()->count(), 1);
    const RegionOfInterest& region = (*session.regions.list())[0];
    EXPECT_EQ((std::array{region.FromSlice, region.Left, region.Right, region.Top, region.Bottom}),
              (std::array{2, 3, 7, 2, 5}));
}

TEST_F(ViewPanelTest, MapsOfAPluginNeedNoModel) {
    window.resize(620, 520);
    panel.resize(600, 500);
    window.show();
    writeSession(5, 2); // too short for a model
    ASSERT_TRUE(session.pluginMaps.registerMaps(1));
    session.pluginMaps.show(true);
    ProbeListener plugin(session.listeners, ListenerPlace::PlugIn);
    plugin.onStep = [](VolumeStep, const VolumeAtHand& hand) {
        hand.document.pluginMaps.PluginMaps[64 + 8 + 2] = -9.0f;
        return true;
    };
    session.runButtonPressed();
    session.report.mapsPresent = false; // of a model there are none
    const auto mosaic = [this] {
        panel.update(true);
        return paintedView().mosaic();
    };
    const QImage painted = mosaic();
    QTest::mouseClick(&view(), Qt::LeftButton, {}, at(1, 2, 1));
    EXPECT_TRUE(view().readOutText().endsWith("map: no name -9.00"))
        << view().readOutText().toStdString();
    session.pluginMaps.show(false);
    EXPECT_NE(mosaic(), painted);
}
