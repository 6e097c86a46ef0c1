// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/anatomical_view.h"

#include "display/anatomical_scene.h"
#include "display/plots/mouse.h"
#include "support/scripted_messages.h"

#include <QHelpEvent>
#include <QTemporaryDir>
#include <QTest>
#include <QToolTip>

namespace {

/// The sections of a scene, with a session that does what the view tells.
class Sections : public testing::Test {
protected:
    void SetUp() override {
        view.resize(700, 520);
        QObject::connect(&view, &AnatomicalView::crossMoved, [this](const CubeVoxel& voxel) {
            cross() = voxel;
            view.slotDocumentChanged();
        });
        QObject::connect(&view, &AnatomicalView::windowChanged, [this](int low, int high) {
            scene.anatomy.windowLow = low;
            scene.anatomy.windowHigh = high;
            view.slotDocumentChanged();
        });
        (void)view.grab();
    }
    CubeVoxel& cross() { return scene.anatomy.cross[size_t(ShownCube::Anatomical)]; }
    [[nodiscard]] QPoint at(SectionAxis axis, const CubeVoxel& voxel) const {
        return view.fields().areaOf(axis, voxel).center().toPoint();
    }
    [[nodiscard]] QStringList readOut() const {
        QStringList lines;
        for (const ReadOutLine& line : view.readOut())
            lines << line.name + ": " + line.text.simplified();
        return lines;
    }
    [[nodiscard]] bool isNear(const CubeVoxel& voxel) {
        const auto isClose = [](int first, int second) { return std::abs(first - second) <= 1; };
        return isClose(cross().x, voxel.x) && isClose(cross().y, voxel.y) &&
               isClose(cross().z, voxel.z);
    }
    AnatomicalScene scene;
    ScriptedMessages messages;
    AnatomicalView view{{scene.anatomy, scene.run, scene.thresholds, scene.pluginMaps}};
};

TEST_F(Sections, MouseMovesTheCrossWithinTheSectionWhereItWasPressed) {
    const std::tuple<SectionAxis, CubeVoxel, CubeVoxel> cases[] = {
        {SectionAxis::X, {9, 60, 200}, {128, 60, 200}},
        {SectionAxis::Y, {40, 9, 30}, {40, 60, 30}},
        {SectionAxis::Z, {90, 100, 9}, {90, 100, 30}}};
    for (const auto& [axis, clicked, expected] : cases) {
        QTest::mouseClick(&view, Qt::LeftButton, {}, at(axis, clicked));
        EXPECT_TRUE(isNear(expected)) << int(axis);
    }
    QTest::mousePress(&view, Qt::LeftButton, {}, at(SectionAxis::X, cross()));
    QTest::mouseMove(&view, {-500, at(SectionAxis::X, {0, 20, 0}).y()});
    EXPECT_TRUE(isNear({90, 20, 0}));
    EXPECT_TRUE(view.cancelDrag());
    QTest::mouseMove(&view, at(SectionAxis::X, {0, 200, 200}));
    EXPECT_TRUE(isNear({90, 20, 0}));
    QTest::mouseClick(&view, Qt::LeftButton, {}, view.fields().readOut.center().toPoint());
    EXPECT_TRUE(isNear({90, 20, 0}));
}

TEST_F(Sections, KeysAndWheelMoveTheCrossToTheBorders) {
    using enum SectionAxis;
    const std::tuple<SectionAxis, Qt::Key, CubeVoxel> steps[] = {
        {X, Qt::Key_Right, {0, 0, 1}},    {X, Qt::Key_Up, {0, -1, 0}},
        {X, Qt::Key_PageDown, {1, 0, 0}}, {Y, Qt::Key_Left, {0, 0, -1}},
        {Y, Qt::Key_Down, {1, 0, 0}},     {Y, Qt::Key_PageUp, {0, -1, 0}},
        {Z, Qt::Key_Right, {1, 0, 0}},    {Z, Qt::Key_Down, {0, 1, 0}},
        {Z, Qt::Key_PageDown, {0, 0, 1}}};
    for (const auto& [axis, key, step] : steps) {
        QTest::mouseClick(&view, Qt::LeftButton, {}, at(axis, cross()));
        const CubeVoxel before = cross();
        QTest::keyClick(&view, key);
        EXPECT_EQ(cross(), (CubeVoxel{before.x + step.x, before.y + step.y, before.z + step.z}));
    }
    mouse::wheel(view, at(Y, cross()), -200);
    EXPECT_EQ(cross().y, 0);
    QTest::keyClick(&view, Qt::Key_PageUp);
    EXPECT_EQ(cross().y, 0);
    // With the head below in the cube, the section is turned and the keys with it.
    scene.anatomy.anatomical.spaces.cubeToScanner = C3dMatrix::rotationX(90);
    cross() = {5, 100, 5};
    view.slotDocumentChanged();
    QTest::mouseClick(&view, Qt::LeftButton, {}, at(Z, cross()));
    QTest::keyClick(&view, Qt::Key_Down);
    (void)view.grab();
    ASSERT_TRUE(view.fields().upsideDown[size_t(Z)]);
    const int before = cross().y;
    QTest::keyClick(&view, Qt::Key_Up);
    EXPECT_EQ(cross().y, before + 1);
}

TEST_F(Sections, RightButtonSetsTheWindow) {
    const QPoint start = at(SectionAxis::Z, {100, 100, 0});
    const double side = view.fields().sections[0].width();
    const auto drag = [&](QPoint by) {
        scene.anatomy.windowLow = 50;
        scene.anatomy.windowHigh = 150;
        QTest::mousePress(&view, Qt::RightButton, {}, start);
        QTest::mouseMove(&view, start + by);
        QTest::mouseRelease(&view, Qt::RightButton, {}, start + by);
        return std::pair(scene.anatomy.windowLow, scene.anatomy.windowHigh);
    };
    const int fortieth = int(std::lround(side * 40 / 255));
    EXPECT_EQ(drag({fortieth, 0}), std::pair(30, 170));
    EXPECT_EQ(drag({0, -fortieth}), std::pair(10, 110)); // upwards is brighter
    EXPECT_EQ(drag({-1000, 0}), std::pair(100, 101));
    EXPECT_EQ(drag({0, 1000}).second, 255);
    QTest::mouseDClick(&view, Qt::RightButton, {}, start);
    EXPECT_EQ(std::pair(scene.anatomy.windowLow, scene.anatomy.windowHigh), std::pair(0, 225));
}

TEST_F(Sections, ReadOutTellsPlaceSampleAndMaps) {
    scene.makeMaps(1, ContrastBoth);
    scene.run.contrasts.ContrastNames = QStringList{"Faces"};
    cross() = {128, 130, 127};
    // From 127.5: (0.5, 2.5, -0.5) mm, turned by 20 degrees: (-0.385, 2.520, -0.5); in voxels from
    // the middle (-0.128, 0.840, -0.125), so 9.37, 8.34, 5.38.
    scene.run.maps.map(0)[size_t((5 * 16 + 8) * 20 + 9)] = -4.25f;
    ASSERT_TRUE(scene.run.project.firstVolume.allocate(20 * 16 * 12));
    scene.run.project.firstVolume.span()[size_t((5 * 16 + 8) * 20 + 9)] = 321;
    scene.anatomy.anatomical.spaces.cubeToScanner = C3dMatrix::translation(-100, -100, -100);
    view.slotDocumentChanged();
    EXPECT_EQ(readOut().join('|').toStdString(),
              "Cube: x 128 y 130 z 127|Intensity: 115|Scanner: 28.0 30.0 27.0|"
              "Run: x 10 y 9 slice 6|Value: 321 first volume as read|t: -4.25 Faces");
    const QImage known = view.grab().toImage();
    view.setOverlayShown(false);
    EXPECT_FALSE(readOut().join('|').contains("Faces"));
    cross() = {0, 0, 0};
    EXPECT_EQ(readOut().last(), "Run: outside");
    scene.anatomy.anatomical.mapping.reset();
    EXPECT_EQ(readOut().last(), "Run: place unknown, no maps");
    scene.anatomy.shown = ShownCube::Functional; // which there is none of
    EXPECT_TRUE(readOut().isEmpty());
    view.slotDocumentChanged();
    EXPECT_NE(view.grab().toImage(), known);
    QTest::mouseClick(&view, Qt::LeftButton, {}, {100, 100});
    QTest::keyClick(&view, Qt::Key_Right);
    messages.expectWarning("WARNING: There are no sections to save!");
    view.slotSaveAsBMP();
}

TEST_F(Sections, AreSavedPixelByPixel) {
    cross() = {100, 110, 120};
    view.slotDocumentChanged();
    const QTemporaryDir folder;
    messages.expectFileChoice("Save Bitmap File", folder.filePath("sections.bmp"));
    view.slotSaveAsBMP();
    const QImage saved(folder.filePath("sections.bmp"), "BMP");
    ASSERT_EQ(saved.size(), QSize(516, 516));
    EXPECT_EQ(saved.pixel(30, 40), view.sections()[0].pixel(30, 40));
    EXPECT_EQ(saved.pixel(260 + 30, 40), view.sections()[2].pixel(30, 40));
    EXPECT_EQ(saved.pixel(30, 260 + 40), view.sections()[1].pixel(30, 40));
    EXPECT_NE(saved.pixel(120, 40), view.sections()[0].pixel(120, 40)); // the cross
}

} // namespace
