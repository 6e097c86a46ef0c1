// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/slice_mosaic.h"

#include "stats/maps_in_use.h"

#include <limits>
#include <map>

namespace {

constexpr QRgb black = 0xff000000;
constexpr QRgb grey = 0xffffffff; // of every slice here: the window is 0 to 1
constexpr float nan = std::numeric_limits<float>::quiet_NaN();
constexpr float infinity = std::numeric_limits<float>::infinity();

/// Slices of 4 x 3 voxels, all white, with zeroed maps of state 3.
struct Scene {
    QtCortivoDoc document{QtCortivoDoc::Kind::Functional};
    SliceImages& slices = document.slices;
    StatisticalMaps& maps = document.maps;
    SliceMosaicSource source;
    QImage mosaic;

    explicit Scene(int nrOfSlices, int nrOfMaps) {
        slices.greyScale.high = 1;
        const std::vector<int16_t> samples(size_t(12 * nrOfSlices), int16_t(1));
        slices.createSlicePixmaps(samples, {4, 3, nrOfSlices});
        maps = mapsInUse(4, 3, nrOfSlices, nrOfMaps, ContrastBoth);
        source.thresholds.ClusterSizePixels = 1;
        for (int i = 0; i < nrOfOverlayColors; ++i)
            document.overlayColors.active[size_t(i)] = {i + 1, 2 * i, 3 * i};
        source.slices = &slices;
        source.layout.MosaicColumns = nrOfSlices;
        source.layout.MosaicRows = 1;
    }
    void set(int map, int slice, int x, int y, float value) {
        maps.map(map)[size_t(slice * 12 + y * 4 + x)] = value;
    }
    QRgb pixel(int x, int y) {
        source.maps = shownContrastMaps(document);
        EXPECT_TRUE(composeSliceMosaic(mosaic, source));
        return mosaic.pixel(x, y);
    }
};

QRgb entry(int index) {
    return qRgb(index + 1, 2 * index, 3 * index);
}

TEST(SliceMosaic, CodesSetsOfPassingMaps) {
    const std::map<std::vector<int>, int> fourMaps{
        {{0}, 0},       {{1}, 1},        {{2}, 3},        {{3}, 7},        {{0, 1}, 2},
        {{0, 2}, 4},    {{0, 3}, 8},     {{1, 2}, 5},     {{1, 3}, 9},     {{2, 3}, 10},
        {{0, 1, 2}, 6}, {{0, 1, 3}, 11}, {{0, 2, 3}, 12}, {{1, 2, 3}, 13}, {{0, 1, 2, 3}, 14},
    };
    for (const auto& [set, index] : fourMaps) {
        Scene scene(1, 4);
        for (const int map : set)
            scene.set(map, 0, 2, 1, -4.0f);
        EXPECT_EQ(scene.pixel(2, 1), entry(index)) << testing::PrintToString(set);
        EXPECT_EQ(scene.pixel(1, 1), grey);
    }
    Scene three(1, 3);
    for (const int map : {0, 1, 2})
        three.set(map, 0, 2, 1, 4.0f);
    EXPECT_EQ(three.pixel(2, 1), entry(7));
}

TEST(SliceMosaic, CodesSignificance) {
    // From 3 to 8: an entry for each 5/9.
    // One value and state for each map. At -1 the voxel keeps its grey.
    using Case = std::tuple<std::vector<float>, std::vector<int>, int>;
    const std::vector<Case> cases{
        {{3.0f}, {1}, 0},
        {{2.9999f}, {1}, -1},
        {{8.0f}, {3}, 9},
        {{infinity}, {1}, 9},
        {{nan}, {3}, -1},
        {{-3.6f}, {3}, 11},
        {{5.0f}, {2}, -1},
        {{4.2f, -5.5f}, {3, 3}, 14}, // the larger magnitude decides the sign
        {{6.5f, -5.5f}, {2, 1}, -1},
        {{nan, 4.2f, 1.0f, nan}, {3, 3, 3, 2}, 2},
    };
    for (const auto& [values, states, index] : cases) {
        Scene scene(1, int(values.size()));
        scene.document.SignificanceColorCoding = true;
        scene.maps.states = states;
        for (size_t map = 0; map < values.size(); ++map)
            scene.set(int(map), 0, 3, 2, values[map]);
        EXPECT_EQ(scene.pixel(3, 2), index < 0 ? grey : entry(index))
            << testing::PrintToString(values);
    }
}

TEST(SliceMosaic, ArrangesSlicesInRowsFromTheFirstShownOne) {
    Scene scene(5, 1);
    scene.set(0, 4, 1, 2, 5.0f);
    scene.source.layout = {3, 2, 3, 1, 1};
    // Slices 3 4 0 / 1 2, and one place left over.
    EXPECT_EQ(scene.pixel(4 + 1, 2), entry(0));
    EXPECT_EQ(scene.mosaic.size(), QSize(12, 6));
    EXPECT_EQ(scene.mosaic.pixel(7, 5), grey);
    EXPECT_EQ(scene.mosaic.pixel(8, 3), black);
}

TEST(SliceMosaic, DrawsSquaresOverInplaneSlices) {
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

TEST(SliceMosaic, MapsOfPluginsTakeThePlaceOfContrasts) {
    Scene scene(2, 1);
    RegisteredPluginMaps registered;
    ASSERT_TRUE(registered.registerMaps(6));
    for (const auto& [map, state] : {std::pair(0, 0), {1, 3}, {3, 2}, {4, 1}})
        registered.setState(map, state);
    registered.setName(3, "three");
    PluginMapValues& values = scene.document.pluginMaps;
    ASSERT_TRUE(values.allocate(5, {4, 3, 2}));
    const auto set = [&](int map, int x, float value) {
        values.PluginMaps[size_t(map) * 24 + 12 + size_t(x)] = value; // slice 1, y 0
    };
    set(1, 0, -infinity);
    set(3, 1, -9.0f);
    set(4, 1, nan);
    set(3, 2, 9.0f);
    set(0, 3, 9.0f); // not shown
    scene.set(0, 1, 3, 1, 9.0f);
    scene.source.thresholds.ClusterSizePixels = 4; // no cluster is as large
    const auto row = [&](int y) {
        scene.source.maps = shownMaps(scene.document, registered);
        EXPECT_TRUE(composeSliceMosaic(scene.mosaic, scene.source));
        std::vector<QRgb> pixels;
        for (int x = 4; x < 8; ++x)
            pixels.push_back(scene.mosaic.pixel(x, y));
        return pixels;
    };
    const std::vector<QRgb> none(4, grey);
    EXPECT_EQ(row(0), none) << "contrasts are shown";
    registered.shown = true;
    const auto colorOf = [](const RgbColor& color) {
        return qRgb(color.red, color.green, color.blue);
    };
    EXPECT_EQ(row(0),
              (std::vector{colorOf(pluginMapColor(0)), colorOf(pluginMapColor(1)), grey, grey}));
    EXPECT_EQ(row(1), none) << "the contrast's voxel";
    EXPECT_EQ(scene.source.maps.names.join('|'), "no name|three|no name");
    EXPECT_EQ(scene.source.maps.statistic, "map");
    scene.document.SignificanceColorCoding = true;
    EXPECT_EQ(row(0), (std::vector{qRgb(0, 255, 75), qRgb(0, 255, 75), grey, grey}));
    ASSERT_TRUE(values.allocate(1, {4, 3, 2}));
    EXPECT_TRUE(shownMaps(scene.document, registered).empty()) << "registered after the start";
}

TEST(SliceMosaic, ThreadsShareTheTiles) {
    Scene scene(11, 2);
    std::vector<int16_t> inplanes(9 * 7 * 11, int16_t(1)); // wider than the squares of the voxels
    scene.slices.createInplanePixmaps(inplanes, {9, 7, 11});
    for (int slice = 0; slice < 11; ++slice)
        for (int i = 0; i < 12; ++i)
            scene.set(i % 2, slice, i % 4, i / 4, float((slice * 5 + i * 7) % 13 - 6));
    scene.source.maps = shownContrastMaps(scene.document);
    for (const bool showInplanes : {false, true}) {
        scene.source.showInplanes = showInplanes;
        for (const SliceMosaicLayout& layout :
             {SliceMosaicLayout{4, 3, 0, 1, 1}, SliceMosaicLayout{3, 2, 0, 1, 1}}) {
            scene.source.layout = layout;
            ASSERT_TRUE(composeSliceMosaic(scene.mosaic, scene.source));
            for (const int threads : {2, 3, 5}) {
                WorkerPool workers(threads);
                QImage shared;
                ASSERT_TRUE(composeSliceMosaic(shared, scene.source, workers));
                EXPECT_TRUE(shared == scene.mosaic) << threads << " threads";
            }
        }
    }
}

TEST(SliceMosaic, RefusesWhatItCanNotShow) {
    Scene scene(2, 1);
    for (const SliceMosaicLayout& layout :
         {SliceMosaicLayout{0, 1, 0, 1, 1}, SliceMosaicLayout{1, -1, 0, 1, 1},
          SliceMosaicLayout{1 << 30, 1 << 30, 0, 1, 1}}) {
        scene.source.layout = layout;
        EXPECT_FALSE(composeSliceMosaic(scene.mosaic, scene.source));
        EXPECT_TRUE(scene.mosaic.isNull());
    }
    scene.source.layout = {2, 1, 0, 1, 1};
    scene.set(0, 0, 0, 0, 5.0f);
    scene.maps.size.x = 3; // another grid
    EXPECT_EQ(scene.pixel(0, 0), grey);
    scene.slices.SlicePixmaps.clear();
    EXPECT_FALSE(composeSliceMosaic(scene.mosaic, scene.source));
}

} // namespace
