// Times of the slice view for one volume: grey images, mosaic with maps, drawing into the view.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/region_marks.h"
#include "display/shown_maps.h"
#include "display/slice_mosaic.h"
#include "processor_time.h"
#include "stats/clusters.h"

#include <QPainter>
#include <cstdio>

namespace {

struct Size {
    int matrix;
    int slices;
    int columns;
    int rows;
};

constexpr int nrOfMaps = 3;
constexpr int nrOfRegions = 6;

constexpr int runs = 101;

std::vector<int16_t> someSamples(const Size& size) {
    std::vector<int16_t> samples(size_t(size.matrix) * size_t(size.matrix) * size_t(size.slices));
    for (size_t i = 0; i < samples.size(); ++i)
        samples[i] = int16_t(i * 7919 % 1500);
    return samples;
}

/// Wide waves, different for each map, in all slices: far more voxels pass than in a brain.
bool fillMaps(StatisticalMaps& maps, const Size& size) {
    if (!maps.allocateMaps(nrOfMaps, {size.matrix, size.matrix, size.slices}))
        return false;
    maps.states.assign(nrOfMaps, ContrastBoth);
    maps.contrastOfMap = {0, 1, 2};
    maps.NrOfActiveContrasts = nrOfMaps;
    for (int map = 0; map < nrOfMaps; ++map)
        for (size_t i = 0; i < maps.size.samples(); ++i) {
            const size_t x = i % size_t(size.matrix);
            const size_t y = i / size_t(size.matrix) % size_t(size.matrix);
            maps.map(map)[i] = float(4.0 * std::sin(double(x) / 6 + map) * std::sin(double(y) / 5));
        }
    OverlayThresholds thresholds;
    computeClusterSizes(maps, thresholds, false);
    return true;
}

/// The same values as maps of a plug-in.
RegisteredPluginMaps copyToPluginMaps(QtCortivoDoc& document) {
    RegisteredPluginMaps registered;
    registered.registerMaps(nrOfMaps);
    registered.shown = true;
    const StatisticalMaps& maps = document.maps;
    if (!document.pluginMaps.allocate(nrOfMaps, maps.size))
        return {};
    for (int map = 0; map < nrOfMaps; ++map) {
        registered.setState(map, ContrastBoth);
        std::ranges::copy(maps.map(map), document.pluginMaps.PluginMaps.data() +
                                             size_t(map) * maps.size.samples());
    }
    return registered;
}

/// Together they hold each voxel once.
Regions someRegions(const Size& size) {
    Regions regions;
    for (int number = 0; number < nrOfRegions; ++number) {
        RegionOfInterest& region = regions.add({});
        region.FromSlice = 1 + number;
        region.Left = region.Top = 10 + 4 * number;
        region.Right = region.Bottom = 30 + 4 * number;
        for (int z = number; z < size.slices; z += nrOfRegions)
            for (int y = 0; y < size.matrix; ++y)
                for (int x = 0; x < size.matrix; ++x)
                    region.voxels.append(x, y, z);
    }
    return regions;
}

void measure(const Size& size) {
    const std::vector<int16_t> samples = someSamples(size);
    SliceImages slices;
    computeDisplayRange(slices.greyScale, samples);
    slices.createSlicePixmaps(samples, {size.matrix, size.matrix, size.slices});
    QtCortivoDoc document(QtCortivoDoc::Kind::Functional);
    StatisticalMaps& maps = document.maps;
    if (!fillMaps(maps, size)) {
        std::printf("%3d: not enough memory\n", size.matrix);
        return;
    }
    SliceMosaicSource source;
    source.slices = &slices;
    source.layout.MosaicColumns = size.columns;
    source.layout.MosaicRows = size.rows;

    size_t passing = 0;
    for (int slice = 0; slice < size.slices; ++slice)
        for (size_t pixel = 0; pixel < maps.size.sliceSamples(); ++pixel)
            passing += voxelIsShown(maps, source.thresholds, slice, pixel) != 0;
    QImage mosaic;
    const double grey = medianTime(runs, [&] { slices.updateSlicePixmaps(samples); });
    const auto compose = [&] {
        source.maps = shownContrastMaps(document);
        (void)composeSliceMosaic(mosaic, source);
    };
    const double contrasts = medianTime(runs, compose);
    document.SignificanceColorCoding = true;
    const double significance = medianTime(runs, compose);
    document.SignificanceColorCoding = false;
    const RegisteredPluginMaps registered = copyToPluginMaps(document);
    const double plugin = medianTime(runs, [&] {
        source.maps = shownMaps(document, registered);
        (void)composeSliceMosaic(mosaic, source);
    });
    QImage view(700, 560, QImage::Format_RGB32);
    const double drawn = medianTime(runs, [&] {
        QPainter painter(&view);
        painter.drawImage(QRectF(0, 0, 560, 560), mosaic);
    });
    const Regions regions = someRegions(size);
    const MosaicTiles tiles{source.layout, size.slices, {size.matrix, size.matrix}, mosaic.rect()};
    std::vector<RegionFrame> frames;
    const double marked = medianTime(runs, [&] {
        markRegionVoxels(mosaic, tiles, regions, {});
        frames = regionFrames(regions, {}, {size.matrix, size.matrix, size.slices});
    });
    std::printf("%3d x %3d x %2d  %7zu  %8.2f  %17.2f  %20.2f  %16.2f  %8.2f  %11.2f\n",
                size.matrix, size.matrix, size.slices, passing, grey, contrasts, significance,
                plugin, drawn, marked);
}

} // namespace

int main() {
    std::printf("Milliseconds of processor time, median of 101, 3 maps shown\n");
    std::printf("size           colored      grey  mosaic, contrasts  mosaic, significance  "
                "mosaic, plug-in  "
                "draw 560  all voxels in regions\n");
    for (const Size& size : {Size{64, 25, 5, 5}, Size{74, 36, 6, 6}, Size{104, 72, 9, 8}})
        measure(size);
}
