// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/qt_cortivo_view.h"

#include "dialogs/appearance.h"
#include "display/tile_marks.h"
#include "run/document/qt_cortivo_doc.h"
#include "support/scripted_messages.h"

#include <QTemporaryDir>
#include <QTest>
#include <QWheelEvent>
#include <gtest/gtest.h>

namespace {

/// Six slices of 8 x 8.
class View : public testing::Test {
protected:
    void SetUp() override {
        const std::vector<int16_t> samples(8 * 8 * 6, 50);
        document.slices.greyScale.high = 100;
        document.slices.createSlicePixmaps(samples, {8, 8, 6});
        document.mosaic = {2, 2, 0, 2, 1};
        document.project.ResolutionX = document.project.ResolutionY = 8;
        document.project.NrOfSlices = 6;
        view.resize(700, 560);
        QObject::connect(&view, &QtCortivoView::rectangleSelected,
                         [this](const VoxelRectangle& chosen) { selected.push_back(chosen); });
        (void)view.grab();
    }
    [[nodiscard]] QPoint at(int place, int x, int y) const {
        return view.tiles().areaOf(place, {x, y, 1, 1}).center().toPoint();
    }
    void drag(QPoint from, QPoint to) {
        QTest::mousePress(&view, Qt::LeftButton, {}, from);
        QTest::mouseMove(&view, to);
    }
    void click(QPoint position) { QTest::mouseClick(&view, Qt::LeftButton, {}, position); }
    void turnWheel(QPoint position, int steps) {
        QWheelEvent event(position, view.mapToGlobal(position), {}, {0, 120 * steps}, Qt::NoButton,
                          {}, Qt::NoScrollPhase, false);
        QApplication::sendEvent(&view, &event);
    }
    [[nodiscard]] bool readsOut(const QString& start) const {
        return view.readOutText().startsWith(start);
    }
    std::vector<VoxelRectangle> selected;
    ScriptedMessages messages;
    QtCortivoDoc document{QtCortivoDoc::Kind::Functional};
    OverlayThresholds thresholds;
    QtCortivoView view{&document, thresholds};
};

TEST_F(View, ScrollsByKeys) {
    view.slotDocumentChanged();
    const std::pair<Qt::Key, int> firstSliceAfter[] = {
        {Qt::Key_PageDown, 2}, {Qt::Key_Right, 4}, {Qt::Key_Plus, 0}, {Qt::Key_PageUp, 5},
        {Qt::Key_Minus, 4},    {Qt::Key_Left, 3},  {Qt::Key_Up, 3}};
    for (const auto& [key, first] : firstSliceAfter) {
        QTest::keyClick(&view, key);
        EXPECT_EQ(document.mosaic.FirstShownSlice, first) << "key " << int(key);
    }
    QTest::keyClick(&view, Qt::Key_Right, Qt::ControlModifier);
    EXPECT_EQ(document.mosaic.FirstShownSlice, 3);
}

TEST_F(View, DragsSelectVoxelsOfTheFirstTile) {
    document.mosaic.FirstShownSlice = 4;
    struct Case {
        QPoint from, to; ///< voxels of the second tile, beyond it too
        std::array<int, 4> sides;
    };
    const Case cases[] = {{{1, 2}, {4, 6}, {1, 5, 2, 7}},
                          {{4, 6}, {1, 2}, {1, 5, 2, 7}},
                          {{3, 3}, {-3, 20}, {0, 4, 3, 8}},
                          {{7, 0}, {500, -900}, {7, 8, 0, 1}}};
    document.slices.InplanePixmaps.assign(6, QImage(24, 24, QImage::Format_RGB32));
    for (const bool inplanes : {false, true})
        for (const auto& [from, to, sides] : cases) {
            view.setShowInplanes(inplanes);
            view.slotDocumentChanged();
            (void)view.grab();
            selected.clear();
            drag(at(1, from.x(), from.y()), at(1, to.x(), to.y()));
            EXPECT_TRUE(readsOut(QString("x %1").arg(sides[0] + 1)));
            EXPECT_TRUE(selected.empty());
            QTest::mouseRelease(&view, Qt::LeftButton, {}, at(1, to.x(), to.y()));
            ASSERT_EQ(selected.size(), 1u);
            const VoxelRectangle& found = selected.front();
            EXPECT_EQ((std::array{found.left, found.right, found.top, found.bottom}), sides);
            EXPECT_EQ(found.slice, 5);
        }
}

TEST_F(View, DragsAreGivenUp) {
    const QPoint from = at(0, 1, 1);
    const QPoint to = at(0, 5, 5);
    const std::function<void()> ways[] = {
        [this] { QTest::keyClick(&view, Qt::Key_Escape); },
        [&] { QTest::mouseClick(&view, Qt::RightButton, {}, to); },
        [this] { view.slotClearArea(); },
        [this] { // the slice is at another place now
            QTest::keyClick(&view, Qt::Key_PageDown);
            (void)view.grab();
        },
        [&] { EXPECT_TRUE(view.cancelDrag()); }};
    for (const auto& giveUp : ways) {
        drag(from, to);
        giveUp();
        EXPECT_FALSE(view.cancelDrag());
        QTest::mouseRelease(&view, Qt::LeftButton, {}, to);
        EXPECT_TRUE(readsOut("Drag"));
        view.slotDocumentChanged();
        (void)view.grab();
    }
    // The release went to another window.
    drag(from, to);
    QMouseEvent unpressed(QEvent::MouseMove, to, view.mapToGlobal(to), Qt::NoButton, {}, {});
    QApplication::sendEvent(&view, &unpressed);
    EXPECT_FALSE(view.cancelDrag());
    QTest::mousePress(&view, Qt::MiddleButton, {}, from);
    QTest::mouseMove(&view, to);
    QTest::mouseRelease(&view, Qt::MiddleButton, {}, to);
    EXPECT_TRUE(selected.empty());
    drag(at(3, 0, 0), at(3, 7, 7));
    const QRectF before = view.tiles().area;
    turnWheel(from, 3);
    EXPECT_EQ(view.tiles().area, before);
    drag(from, to); // instead of the release
    QTest::mouseRelease(&view, Qt::LeftButton, {}, to);
    ASSERT_EQ(selected.size(), 1u);
    EXPECT_EQ(selected.front().slice, view.tiles().nearestVoxel(0, from).slice);
}

TEST_F(View, NamesTheSidesOfThePatient) {
    const auto grab = [this](float row, bool inplanes) {
        document.project.position = {.positionInfoValid = 1, .rowDirection = {row, 0, 0}};
        view.setShowInplanes(inplanes);
        view.slotDocumentChanged();
        return view.grab().toImage();
    };
    document.slices.InplanePixmaps = document.slices.SlicePixmaps;
    EXPECT_NE(grab(1, false), grab(-1, false));
    EXPECT_EQ(grab(1, true), grab(0, false)) << "that of inplanes is not known";

    const MosaicTiles tiles{{1, 1, 0, 1, 1}, 1, {8, 8}, {0, 0, 200, 200}};
    const auto painted = [&](const PatientSides& sides) {
        QImage picture(200, 200, QImage::Format_RGB32);
        picture.fill(Qt::black);
        QPainter painter(&picture);
        paintTileMarks(painter, tiles, sides, tiles.area, view.font());
        return picture;
    };
    const QImage both = painted({"R", "L"});
    EXPECT_EQ(both.copy(0, 0, 100, 200), painted({"R", "R"}).copy(0, 0, 100, 200));
    EXPECT_EQ(both.copy(100, 0, 100, 200), painted({"L", "L"}).copy(100, 0, 100, 200));
    EXPECT_NE(both, painted({"R", "R"}));
}

TEST_F(View, ClicksReadVoxelsOut) {
    click(at(2, 3, 4));
    EXPECT_TRUE(readsOut("x 4  y 5  slice 3"));
    click(at(1, 7, 0));
    EXPECT_TRUE(readsOut("x 8  y 1  slice 2"));
    const QImage marked = view.grab().toImage();
    click(at(1, 7, 0));
    EXPECT_TRUE(readsOut("Drag"));
    EXPECT_NE(view.grab().toImage(), marked);
    click(at(1, 7, 0));
    click({1, 300}); // beside the slices
    EXPECT_TRUE(readsOut("Drag"));
    click(at(3, 4, 4));
    document.mosaic.FirstShownSlice = 4; // 5 6 1 2
    view.slotDocumentChanged();
    const auto slices = [this] { return view.grab({0, 0, 700, 500}).toImage(); };
    const QImage withoutCross = slices();
    click({1, 300});
    EXPECT_EQ(slices(), withoutCross) << "its slice is not shown";
    EXPECT_TRUE(selected.empty());
}

TEST_F(View, ZoomsAroundThePointerAndGoesBack) {
    click(at(2, 3, 4));
    const QRectF whole = view.tiles().area;
    const QPoint pointer = at(1, 2, 6);
    turnWheel(pointer, 3);
    EXPECT_NEAR(view.tiles().area.width(), whole.width() * 1.953125, 1e-6);
    EXPECT_NEAR(QLineF(at(1, 2, 6), pointer).length(), 0, 1.5); // voxels have 33, then 65 pixels
    QTest::mousePress(&view, Qt::MiddleButton, {}, {300, 300});
    QTest::mouseMove(&view, {310, 295});
    QTest::mouseRelease(&view, Qt::MiddleButton, {}, {310, 295});
    EXPECT_NEAR(QLineF(at(1, 2, 6), pointer + QPoint(10, -5)).length(), 0, 1.5);
    const double left = view.tiles().area.left();
    QTest::keyClick(&view, Qt::Key_Right, Qt::AltModifier);
    EXPECT_LT(view.tiles().area.left(), left);

    click(at(1, 5, 5)); // the first click of the two
    QTest::mouseDClick(&view, Qt::LeftButton, {}, at(1, 5, 5));
    EXPECT_EQ(view.tiles().area, whole);
    EXPECT_TRUE(readsOut("x 4  y 5  slice 3"));
    EXPECT_TRUE(selected.empty());

    const std::pair<Qt::Key, double> zoomAfter[] = {
        {Qt::Key_Plus, 1.25}, {Qt::Key_Equal, 1.5625}, {Qt::Key_Minus, 1.25}, {Qt::Key_0, 1}};
    for (const auto& [key, factor] : zoomAfter) {
        QTest::keyClick(&view, key, Qt::ControlModifier);
        EXPECT_NEAR(view.tiles().area.width(), whole.width() * factor, 1e-6) << int(key);
    }
    EXPECT_EQ(document.mosaic.FirstShownSlice, 0);
}

TEST_F(View, SavesRegionsWithTheBitmap) {
    RegionOfInterest region;
    region.FromSlice = 2;
    region.Left = region.Top = 3;
    region.Right = region.Bottom = 6;
    document.regions.add(std::move(region));
    RegionOfInterest& atBorder = document.regions.add({});
    atBorder.Left = 7;
    atBorder.Right = 9;
    atBorder.Top = 3;
    atBorder.Bottom = 6;
    document.slices.InplanePixmaps.assign(6, QImage(32, 32, QImage::Format_RGB32));
    view.setShowInplanes(true);
    const QTemporaryDir folder;
    messages.expectFileChoice("Save Bitmap File", folder.filePath("run.bmp"));
    view.slotSaveAsBMP();
    const QImage saved(folder.filePath("run.bmp"), "BMP");
    const QRgb color = toQColor(builtInRegionColors()[0]).rgb();
    for (const QPoint corner : {QPoint(40, 8), QPoint(39, 19), QPoint(53, 21)})
        EXPECT_EQ(saved.pixel(corner), color) << corner.x() << " " << corner.y();
    EXPECT_EQ(saved.copy(34, 6, 4, 16), view.mosaic().copy(34, 6, 4, 16)) << "the next tile";
    for (const QPoint inside : {QPoint(45, 14), QPoint(8, 8)})
        EXPECT_EQ(saved.pixel(inside), view.mosaic().pixel(inside));
    EXPECT_NE(saved.copy(54, 8, 8, 8), view.mosaic().copy(54, 8, 8, 8)); // the number
}

TEST_F(View, SavesTheMosaicAsBitmap) {
    const QTemporaryDir folder;
    messages.expectFileChoice("Save Bitmap File", folder.filePath("run 1.2.bmp"));
    view.slotSaveAsBMP();
    const QImage saved(folder.filePath("run 1.2.bmp"), "BMP");
    EXPECT_EQ(saved.convertToFormat(QImage::Format_RGB32), view.mosaic());

    const QString missing = folder.filePath("missing/run.bmp");
    messages.expectFileChoice("Save Bitmap File", missing);
    messages.expect(MessageLevel::Warning,
                    QString("WARNING: Unable to write bitmap file \"%1\"!").arg(missing));
    view.slotSaveAsBMP();
}

} // namespace
