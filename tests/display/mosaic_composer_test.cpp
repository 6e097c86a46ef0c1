// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/mosaic_composer.h"

#include <gtest/gtest.h>
#include <limits>
#include <map>

namespace {

constexpr QRgb black = 0xff000000;
constexpr QRgb grey = 0xffffffff; // of every slice here: the window is 0 to 1
constexpr float nan = std::numeric_limits<float>::quiet_NaN();
constexpr float infinity = std::numeric_limits<float>::infinity();

/// Slices of 4 x 3 voxels, all white, with zeroed maps of state 3.
struct Scene {
    SliceImages slices;
    StatisticalMaps maps;
    OverlayColors colors;
    MosaicSource source;
    QImage mosaic;

    explicit Scene(int nrOfSlices, int nrOfMaps) {
        slices.greyScale.high = 1;
        const std::vector<int16_t> samples(size_t(12 * nrOfSlices), int16_t(1));
        slices.createSlicePixmaps(samples, 4, 3, nrOfSlices);
        maps.sizeX = 4;
        maps.sizeY = 3;
        maps.nrOfSlices = nrOfSlices;
        EXPECT_TRUE(maps.allocateMaps(nrOfMaps));
        maps.states.assign(size_t(nrOfMaps), ContrastBoth);
        maps.NrOfActiveContrasts = nrOfMaps;
        maps.NrOfShownMaps = nrOfMaps;
        maps.ClusterSizePixels = 1;
        for (int i = 0; i < nrOfOverlayColors; ++i)
            colors.active[size_t(i)] = {i + 1, 2 * i, 3 * i};
        source.slices = &slices;
        source.maps = &maps;
        source.colors = &colors;
        source.layout.MosaicColumns = nrOfSlices;
        source.layout.MosaicRows = 1;
    }
    void set(int map, int slice, int x, int y, float value) {
        maps.ContrastMaps[size_t(map)][size_t(slice * 12 + y * 4 + x)] = value;
    }
    QRgb pixel(int x, int y) {
        EXPECT_TRUE(composeMosaic(mosaic, source));
        return mosaic.pixel(x, y);
    }
};

QRgb entry(int index) {
    return qRgb(index + 1, 2 * index, 3 * index);
}

TEST(MosaicComposer, CodesSetsOfPassingMaps) {
    const std::map<std::vector<int>, int> fourMaps{
        {{0}, 0},       {{1}, 1},        {{2}, 3},        {{3}, 7},        {{0, 1}, 2},
        {{0, 2}, 4},    {{0, 3}, 8},     {{1, 2}, 5},     {{1, 3}, 9},     {{2, 3}, 10},
        {{0, 1, 2}, 6}, {{0, 1, 3}, 11}, {{0, 2, 3}, 12}, {{1, 2, 3}, 13}, {{0, 1, 2, 3}, 14},
    };
    for (int nrOfMaps = 1; nrOfMaps <= 4; ++nrOfMaps) {
        for (const auto& [set, indexOfFour] : fourMaps) {
            if (set.back() >= nrOfMaps)
                continue;
            Scene scene(1, nrOfMaps);
            for (const int map : set)
                scene.set(map, 0, 2, 1, -4.0f);
            const bool threeOfThree = nrOfMaps == 3 && set.size() == 3;
            EXPECT_EQ(scene.pixel(2, 1), entry(threeOfThree ? 7 : indexOfFour))
                << nrOfMaps << " maps, passing " << testing::PrintToString(set);
            EXPECT_EQ(scene.pixel(1, 1), grey);
        }
    }
}

TEST(MosaicComposer, CodesSignificance) {
    // From 3 to 8: an entry for each 5/9.
    struct Case {
        std::vector<float> values; ///< one for each map
        std::vector<int> states;
        int index; ///< -1: the voxel keeps its grey
    };
    const std::vector<Case> cases{
        {{3.0f}, {1}, 0},
        {{2.9999f}, {1}, -1},
        {{3.6f}, {1}, 1},
        {{8.0f}, {3}, 9},
        {{infinity}, {1}, 9},
        {{nan}, {3}, -1},
        {{-3.6f}, {3}, 11},
        {{-infinity}, {3}, 19},
        {{5.0f}, {2}, -1},
        {{4.2f, -5.5f}, {3, 3}, 14}, // the larger magnitude tells the sign
        {{6.5f, -5.5f}, {3, 3}, 6},
        {{6.5f, -5.5f}, {2, 1}, -1},
        {{nan, 4.2f, 1.0f, nan}, {3, 3, 3, 2}, 2},
    };
    for (const Case& test : cases) {
        Scene scene(1, int(test.values.size()));
        scene.source.significanceColorCoding = true;
        scene.maps.states = test.states;
        for (size_t map = 0; map < test.values.size(); ++map)
            scene.set(int(map), 0, 3, 2, test.values[map]);
        EXPECT_EQ(scene.pixel(3, 2), test.index < 0 ? grey : entry(test.index))
            << testing::PrintToString(test.values);
    }
    // Thresholds that span nothing.
    EXPECT_EQ(significanceColorIndex(3.0f, false, 3.0f, 3.0f), 9);
    EXPECT_EQ(significanceColorIndex(4.0f, true, 3.0f, 2.0f), 19);
    EXPECT_EQ(significanceColorIndex(4.0f, false, 3.0f, nan), 9);
    EXPECT_EQ(significanceColorIndex(2.0f, true, 3.0f, 8.0f), 10);
}

TEST(MosaicComposer, AsksForTheClusterSizeUnlessItIsOne) {
    Scene scene(3, 1);
    for (int slice = 0; slice < 3; ++slice)
        scene.set(0, slice, 0, 0, 5.0f);
    EXPECT_EQ(scene.pixel(0, 0), entry(0));
    scene.maps.ClusterSizePixels = 2;
    EXPECT_EQ(scene.pixel(4, 0), grey); // without sizes nothing shows
    scene.maps.ClusterSizeSlices.assign(3, std::vector<int>(12, 0));
    scene.maps.ClusterSizeSlices[1][0] = 2;
    scene.maps.ClusterSizeSlices[2].clear();
    EXPECT_EQ(scene.pixel(0, 0), grey);
    EXPECT_EQ(scene.pixel(4, 0), entry(0));
    EXPECT_EQ(scene.pixel(8, 0), grey);
}

TEST(MosaicComposer, ArrangesSlicesInRowsFromTheFirstShownOne) {
    Scene scene(5, 1);
    scene.set(0, 4, 1, 2, 5.0f);
    scene.source.layout = {3, 2, 3, 1, 1};
    // Slices 3 4 0 / 1 2, and one place left over.
    EXPECT_EQ(scene.pixel(4 + 1, 2), entry(0));
    EXPECT_EQ(scene.mosaic.size(), QSize(12, 6));
    EXPECT_EQ(scene.mosaic.pixel(7, 5), grey);
    EXPECT_EQ(scene.mosaic.pixel(8, 3), black);
    EXPECT_EQ(scene.mosaic.pixel(11, 5), black);
    scene.source.layout = {2, 1, 0, 1, 1}; // fewer places than slices
    EXPECT_EQ(scene.pixel(1, 2), grey);
    EXPECT_EQ(scene.mosaic.size(), QSize(8, 3));
}

TEST(MosaicComposer, DrawsSquaresOverInplaneSlices) {
    Scene scene(2, 1);
    scene.slices.InplanePixmaps.assign(2, QImage(8, 6, QImage::Format_Grayscale8));
    for (QImage& image : scene.slices.InplanePixmaps)
        image.fill(255);
    scene.source.showInplanes = true;
    scene.set(0, 1, 1, 2, 5.0f);
    EXPECT_EQ(scene.pixel(0, 0), grey);
    for (int y = 0; y < 6; ++y)
        for (int x = 0; x < 16; ++x)
            EXPECT_EQ(scene.mosaic.pixel(x, y), y >= 4 && (x == 10 || x == 11) ? entry(0) : grey)
                << x << " " << y;
}

TEST(MosaicComposer, RefusesWhatItCanNotShow) {
    Scene scene(2, 1);
    for (const MosaicLayout& layout : {MosaicLayout{0, 1, 0, 1, 1}, MosaicLayout{1, -1, 0, 1, 1},
                                       MosaicLayout{1 << 30, 1 << 30, 0, 1, 1}}) {
        scene.source.layout = layout;
        EXPECT_FALSE(composeMosaic(scene.mosaic, scene.source));
        EXPECT_TRUE(scene.mosaic.isNull());
    }
    scene.source.layout = {2, 1, 0, 1, 1};
    scene.set(0, 0, 0, 0, 5.0f);
    scene.maps.NrOfShownMaps = 2; // one is there
    EXPECT_EQ(scene.pixel(0, 0), grey);
    scene.maps.NrOfShownMaps = 1;
    scene.maps.sizeX = 3; // another grid
    EXPECT_EQ(scene.pixel(0, 0), grey);
    scene.slices.SlicePixmaps.clear();
    EXPECT_FALSE(composeMosaic(scene.mosaic, scene.source));
}

} // namespace
