// SPDX-License-Identifier: GPL-3.0-or-later
#include "mosaic_image.h"

#include <algorithm>

int mosaicColumns(const ScanGeometry& geometry) {
    return geometry.mosaicTiles() * geometry.sizeX;
}

int mosaicRows(const ScanGeometry& geometry) {
    return geometry.mosaicTiles() * geometry.sizeY;
}

std::vector<uint16_t> mosaicImage(const ScanGeometry& geometry, int tiles,
                                  std::span<const uint16_t> samples) {
    const auto tilesInRow = size_t(tiles);
    const auto sizeX = size_t(geometry.sizeX);
    const auto sizeY = size_t(geometry.sizeY);
    const size_t columns = tilesInRow * sizeX;
    std::vector<uint16_t> image(columns * tilesInRow * sizeY, 0);
    const size_t nrOfSlices = samples.size() / geometry.sliceVoxels();
    for (size_t slice = 0; slice < nrOfSlices; ++slice)
        for (size_t y = 0; y < sizeY; ++y) {
            const size_t from = slice * geometry.sliceVoxels() + y * sizeX;
            const size_t row = slice / tilesInRow * sizeY + y;
            const size_t to = row * columns + slice % tilesInRow * sizeX;
            std::copy_n(samples.begin() + ptrdiff_t(from), sizeX, image.begin() + ptrdiff_t(to));
        }
    return image;
}

std::vector<uint16_t> reversedSlices(const ScanGeometry& geometry,
                                     std::span<const uint16_t> samples) {
    std::vector<uint16_t> reversed;
    reversed.reserve(samples.size());
    for (size_t end = samples.size(); end > 0; end -= geometry.sliceVoxels()) {
        const auto slice = samples.subspan(end - geometry.sliceVoxels(), geometry.sliceVoxels());
        reversed.insert(reversed.end(), slice.begin(), slice.end());
    }
    return reversed;
}
