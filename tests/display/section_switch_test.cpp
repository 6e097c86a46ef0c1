// From the slices to the sections of a run and back.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/anatomical_view.h"
#include "display/qt_cortivo_view.h"
#include "display/view_panel.h"
#include "run/loop/simulated_session.h"

#include <QTest>
#include <QToolButton>

namespace {

SimulationOptions smallRun() {
    SimulationOptions options;
    options.sizeX = options.sizeY = 32;
    options.nrOfSlices = 6;
    options.nrOfVolumes = 26;
    options.blockLength = 4;
    return options;
}

class SectionSwitch : public testing::Test {
protected:
    void SetUp() override {
        run.writeAll();
        window.resize(700, 560);
        panel.resize(680, 520);
        window.show();
        EXPECT_EQ(run.run(), QStringList());
    }
    QtCortivoView& slices() { return *panel.findChild<QtCortivoView*>("FunctionalView"); }
    AnatomicalView& sections() { return *panel.findChild<AnatomicalView*>("AnatomicalView"); }
    Anatomy& anatomy() { return run.session.anatomicalDocument->anatomy; }
    /// Which buttons are enabled (e), and which of them are checked (C).
    QString buttons() {
        panel.refreshButtons();
        QString shown;
        for (const char* name : {"EPISlicesBtn", "EPISlices3DBtn", "VMRBtn", "LeftHemiBtn"}) {
            const auto& button = *window.findChild<QToolButton*>(name);
            shown += button.isChecked() ? 'C' : button.isEnabled() ? 'e' : '-';
        }
        return shown;
    }
    SimulatedSession run{smallRun()};
    QWidget window;
    ViewPanel panel{run.session, &window};
};

TEST_F(SectionSwitch, ButtonsFollowTheViewAndTheRunsThatFollow) {
    EXPECT_EQ(buttons(), "Ce--");
    panel.showSections(ShownCube::Anatomical); // of which there is none
    EXPECT_EQ(buttons(), "Ce--");
    panel.showSections(ShownCube::Functional);
    EXPECT_EQ(buttons(), "eC--");
    EXPECT_TRUE(slices().isHidden());
    panel.update(false);
    EXPECT_EQ(panel.window()->focusWidget(), &sections());
    EXPECT_FALSE(sections().readOut().empty());
    EXPECT_EQ(run.run(), QStringList());
    EXPECT_EQ(buttons(), "eC--");
    panel.showSlices();
    EXPECT_EQ(buttons(), "Ce--");
    VMRVolume volume;
    ASSERT_TRUE(volume.clearCube());
    anatomy().anatomical.volume = std::move(volume);
    run.session.requests.pendingOverlayVMR = 0;
    EXPECT_EQ(buttons(), "Cee-");
    panel.showSections(ShownCube::Anatomical);
    EXPECT_EQ(buttons(), "eeC-");
}

TEST_F(SectionSwitch, SlicesAndSectionsShowTheSameVoxel) {
    (void)slices().grab();
    const MosaicTiles tiles = slices().tiles();
    const int place = placeOfSlice(tiles.layout, 4, tiles.nrOfSlices);
    QTest::mouseClick(&slices(), Qt::LeftButton, {},
                      tiles.areaOf(place, {20, 11, 1, 1}).center().toPoint());
    const CubeVoxel cross = anatomy().cross[size_t(ShownCube::Functional)];
    const auto there =
        anatomy().functional.functionalPlace({float(cross.x), float(cross.y), float(cross.z)});
    ASSERT_TRUE(there);
    EXPECT_EQ(nearestVoxel(there->x), 20);
    EXPECT_EQ(nearestVoxel(there->y), 11);
    EXPECT_EQ(nearestVoxel(there->z), 4);

    // The cube's z runs along the columns of the slices.
    panel.showSections(ShownCube::Functional);
    (void)sections().grab();
    const QPoint position = sections().fields().areaOf(SectionAxis::X, cross).center().toPoint();
    QTest::mouseClick(&sections(), Qt::LeftButton, {}, position);
    EXPECT_TRUE(slices().readOutText().startsWith("x 21  y 12  slice 5"))
        << qPrintable(slices().readOutText());
    const int voxelSide = int(std::lround(run.session.functionalDocument->project.pixelSizeX));
    for (int step = 0; step < voxelSide; ++step)
        QTest::keyClick(&sections(), Qt::Key_Right);
    EXPECT_TRUE(slices().readOutText().startsWith("x 22  y 12  slice 5"))
        << qPrintable(slices().readOutText());
    QTest::mouseClick(&sections(), Qt::LeftButton, {},
                      sections().fields().sections[0].topLeft().toPoint());
    EXPECT_TRUE(slices().readOutText().startsWith("Drag")) << "outside the run";
}

} // namespace
