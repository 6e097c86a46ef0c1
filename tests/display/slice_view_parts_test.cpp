// The parts of the slice view that need no widget.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/overlay_legend.h"
#include "display/patient_sides.h"
#include "display/rectangle_drag.h"
#include "display/region_marks.h"
#include "display/view_zoom.h"
#include "display/voxel_read_out.h"

#include "run/document/qt_cortivo_doc.h"

#include <gtest/gtest.h>
#include <limits>

namespace {

constexpr float nan = std::numeric_limits<float>::quiet_NaN();

TEST(PatientSides, FollowTheRowsInPatientCoordinates) {
    const std::pair<Vector3, const char*> cases[] = {
        {{1, 0, 0}, "RL"},     {{0, 1, 0}, ""}, {{0.8f, 0.6f, 0}, "RL"}, {{-0.8f, 0, -0.6f}, "LR"},
        {{0.6f, 0.8f, 0}, ""}, {{2, 0, 0}, ""}, {{nan, 0, 0}, ""}};
    FMRPositionInfo position;
    for (const auto& [rowDirection, expected] : cases) { // at the left, at the right
        position.positionInfoValid = 1;
        position.rowDirection = rowDirection;
        const PatientSides sides = patientSides(position);
        EXPECT_EQ((sides.atLeft + sides.atRight).toStdString(), expected);
    }
    position.positionInfoValid = 0;
    position.rowDirection = {1, 0, 0};
    EXPECT_FALSE(patientSides(position).known());
    position = {.positionInfoValid = 1, .coordinateSystem = 2, .rowDirection = {1, 0, 0}};
    EXPECT_FALSE(patientSides(position).known());
}

TEST(MosaicTiles, FindSlicesWhereTheyAreShown) {
    for (const int first : {0, 4, -3, 1000})
        for (int slice = -1; slice <= 6; ++slice) {
            const SliceMosaicLayout layout{2, 2, first, 1, 1};
            const int place = placeOfSlice(layout, slice, 6);
            int expected = -1;
            for (int candidate = 0; candidate < 4; ++candidate)
                if (sliceAtPlace(layout, candidate, 6) == slice)
                    expected = candidate;
            EXPECT_EQ(place, expected) << first << " " << slice;
        }
    const MosaicTiles tiles{{3, 2, 0, 1, 1}, 4, {8, 8}, {10, 10, 30, 20}};
    EXPECT_EQ(tiles.placeAt({15, 25}), 3);
    for (const QPointF outside : {QPointF(25, 25), QPointF(9, 15), QPointF(25, 31)})
        EXPECT_EQ(tiles.placeAt(outside), -1);
}

TEST(RectangleDrag, SaysWhatItSelects) {
    const RectangleDrag drag{0, {17, 29, 8}, {11, 34, 8}};
    EXPECT_EQ(rectangleText(drag.rectangle(), {7, 9}),
              "x 12-18  y 30-35  slices 8-10   126 voxels");
    EXPECT_EQ(rectangleText({0, 4, 5, 6, 7}, {0, 0}), "x 5  y 7  slice 1   1 voxel");
}

TEST(VoxelReadOut, TellsSampleAndShownMaps) {
    QtCortivoDoc document(QtCortivoDoc::Kind::Functional);
    FMRProject& project = document.project;
    EXPECT_FALSE(voxelReadOut(document, {0, 0, 16}, 0, {}));
    project.ResolutionX = 4;
    project.ResolutionY = 3;
    project.NrOfSlices = 2;
    project.NrOfVolumes = 2;
    ASSERT_TRUE(project.allocateVolumes());
    const VoxelPosition voxel{3, 1, 1};
    const size_t offset = 12 + 4 + 3;
    project.volumes[1][offset] = -7;
    EXPECT_EQ(voxelReadOutText(
                  *voxelReadOut(document, voxel, firstVolumeAsRead, shownContrastMaps(document))),
              "x 4  y 2  slice 2");
    ASSERT_TRUE(project.firstVolume.allocate(24));
    project.firstVolume.span()[offset] = 812;
    ASSERT_TRUE(document.maps.allocateMaps(3, project.size()));
    document.maps.NrOfActiveContrasts = 3;
    document.maps.NrOfShownMaps = 2;
    document.maps.states = {1, 2, 1};
    document.maps.contrastOfMap = {2, 0, 1};
    document.contrasts.ContrastNames = QStringList{"Houses", "Hands", "Faces"};
    document.maps.map(0)[offset] = 4.314f;
    document.maps.map(1)[offset] = -1.2f;
    const auto text = [&](int volume, bool mapsShown) {
        return voxelReadOutText(*voxelReadOut(
            document, voxel, volume, mapsShown ? shownContrastMaps(document) : ShownMaps{}));
    };
    EXPECT_EQ(text(firstVolumeAsRead, true),
              "x 4  y 2  slice 2   first volume as read: 812   t: Faces 4.31, Houses -1.20");
    EXPECT_EQ(text(1, false), "x 4  y 2  slice 2   volume 2: -7");
    const auto legend = [&](bool significance) {
        document.SignificanceColorCoding = significance;
        return legendText(makeOverlayLegend(shownContrastMaps(document), {2.5f, 9.0f}));
    };
    EXPECT_TRUE(legend(false).startsWith("t from 2.50\nFaces\nHouses"))
        << qPrintable(legend(false));
    EXPECT_EQ(legend(true), "t from 2.50, strongest colour at 9.00");
    document.contrasts.ConjunctionAnalysis = true;
    document.maps.NrOfShownMaps = 1;
    EXPECT_EQ(text(1, true), "x 4  y 2  slice 2   volume 2: -7   t: Conjunction 4.31");
    document.maps.NrOfActiveContrasts = 1; // of one contrast there is none
    EXPECT_EQ(text(1, true), "x 4  y 2  slice 2   volume 2: -7   t: Faces 4.31");
    document.maps.MapType = MapKind::F;
    document.contrasts.ConjunctionAnalysis = false;
    document.contrasts.shownStatistic = ShownStatistic::FOfSelected;
    EXPECT_EQ(text(1, true), "x 4  y 2  slice 2   volume 2: -7   F: Selected contrasts 4.31");
    document.contrasts.shownStatistic = ShownStatistic::FOfContrast;
    EXPECT_EQ(text(1, true), "x 4  y 2  slice 2   volume 2: -7   F: Faces 4.31");
    document.maps.size.x = 5; // maps of another grid
    EXPECT_EQ(text(1, true), text(1, false));
    for (const VoxelPosition& outside : {VoxelPosition{4, 0, 0}, {0, 3, 0}, {0, 0, 2}, {-1, 0, 0}})
        EXPECT_FALSE(voxelReadOut(document, outside, 1, {}));
}

/// Regions on three slices of 8 x 6.
class Marks : public testing::Test {
protected:
    Marks() {
        add({2, 3, 6, 5, 2}, {2, 2, 4, 4}, {1, 1, 1, 1}); // its corners as they were dragged
        add({1, 1, 1, 1, 1}, {0, 7, 99}, {2, 2, 2});      // made from voxels only
        regions[0].SortedVoxelList = {2, 0, 1, 3};
        regions[0].TopVoxelRatio = 0.25f;
    }
    void add(const std::array<int, 5>& from, const std::vector<int>& x, const std::vector<int>& z) {
        RegionOfInterest region;
        region.FromSlice = from[0];
        region.Left = from[1];
        region.Right = from[2];
        region.Top = from[3];
        region.Bottom = from[4];
        for (size_t i = 0; i < x.size(); ++i)
            region.voxels.append(x[i], int(1 + i), z[i]);
        regions.add(std::move(region));
    }
    [[nodiscard]] std::vector<RegionFrame> frames() const {
        return regionFrames(regions, marking, {8, 6, 3});
    }
    Regions regions;
    RegionMarking marking;
};

TEST_F(Marks, FramesFollowStyleSlicesAndBestVoxels) {
    const RegionFrame loose{1, 2, {0, 1, 8, 2}, false};
    EXPECT_EQ(frames(), (std::vector<RegionFrame>{{0, 1, {2, 1, 3, 3}}, loose}));
    marking.MultiSliceROISelection = 2;
    marking.style = RoiDisplayStyle::Rectangles;
    EXPECT_EQ(frames(),
              (std::vector<RegionFrame>{{0, 1, {2, 1, 3, 3}}, {0, 2, {2, 1, 3, 3}}, loose}));
    marking.style = RoiDisplayStyle::MarkedVoxels;
    EXPECT_EQ(frames(), (std::vector<RegionFrame>{{0, 1, {2, 1, 3, 4}, false}, loose}));
    marking.bestVoxelSelection = true;
    EXPECT_EQ(frames(), (std::vector<RegionFrame>{{0, 1, {4, 3, 1, 1}, false}, loose}));
    // What a file may hold.
    marking.style = RoiDisplayStyle::Rectangles;
    regions[0].FromSlice = 1;
    regions[0].Left = std::numeric_limits<int>::min();
    regions[0].Right = std::numeric_limits<int>::max();
    EXPECT_EQ(frames().front(), (RegionFrame{0, 0, {0, 1, 8, 3}, true}));
}

TEST_F(Marks, VoxelsTakeTheColourInTheirTiles) {
    // Tiles of 2 x 2 pixels a voxel; the slices are shown in the order 2 0 / 1.
    const MosaicTiles tiles{{2, 2, 2, 1, 1}, 3, {8, 6}, {0, 0, 32, 24}};
    const auto marked = [&] {
        QImage mosaic(32, 24, QImage::Format_RGB32);
        mosaic.fill(qRgb(100, 100, 100));
        markRegionVoxels(mosaic, tiles, regions, marking);
        std::vector<std::pair<QPoint, QRgb>> found;
        for (int y = 0; y < 24; y += 2)
            for (int x = 0; x < 32; x += 2)
                if (mosaic.pixel(x, y) != qRgb(100, 100, 100)) {
                    found.push_back({{x / 2, y / 2}, mosaic.pixel(x, y)});
                    EXPECT_EQ(mosaic.pixel(x + 1, y + 1), mosaic.pixel(x, y));
                }
        return found;
    };
    marking.colors[0] = {200, 0, 50};
    marking.colors[1] = {0, 255, 0};
    using Found = std::vector<std::pair<QPoint, QRgb>>;
    const QRgb first = qRgb(150, 50, 75);
    const QRgb second = qRgb(50, 177, 50);
    const Found loose{{{0, 1}, second}, {{7, 2}, second}};
    EXPECT_EQ(marked().size(), 6u);
    marking.bestVoxelSelection = true;
    EXPECT_EQ(marked(), (Found{loose[0], loose[1], {{4, 9}, first}}));
    marking.style = RoiDisplayStyle::Rectangles;
    EXPECT_EQ(marked(), loose);
}

TEST(ViewZoom, KeepsWhatIsUnderThePointerAndFillsTheRoom) {
    const QRectF room(0, 0, 400, 300);
    const QRectF fitted(50, 0, 300, 300);
    ViewZoom zoom;
    EXPECT_EQ(zoom.area(fitted, room), fitted);
    const QPointF pointer(170, 90);
    zoom.zoom(4, pointer, fitted, room);
    EXPECT_EQ(zoom.area(fitted, room), QRectF(-310, -270, 1200, 1200));
    zoom.pan({10000, -20}, fitted, room);
    EXPECT_EQ(zoom.area(fitted, room), QRectF(0, -290, 1200, 1200));
    zoom.pan({-5, 0}, fitted, room);
    EXPECT_EQ(zoom.area(fitted, room).left(), -5);
    zoom.zoom(1000, pointer, fitted, room);
    EXPECT_EQ(zoom.factor(), ViewZoom::largest);
    zoom.zoom(1e-6, pointer, fitted, room);
    EXPECT_TRUE(zoom.isWhole());
    EXPECT_EQ(zoom.area(fitted, room), fitted);
}

} // namespace
