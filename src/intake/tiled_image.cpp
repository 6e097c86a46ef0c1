// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/tiled_image.h"

#include <cstring>

bool TiledImageLayout::holdsAllSlices() const {
    if (volume.x <= 0 || volume.y <= 0 || volume.slices <= 0 || imageSizeX < volume.x ||
        imageSizeY < volume.y)
        return false;
    return int64_t(imageSizeX / volume.x) * (imageSizeY / volume.y) >= volume.slices;
}

QString unusableLayoutMessage(const TiledImageLayout& layout) {
    return QString("ERROR: A mosaic of %1 x %2 does not hold %3 slices of %4 x %5 - check settings "
                   "file !")
        .arg(layout.imageSizeX)
        .arg(layout.imageSizeY)
        .arg(layout.volume.slices)
        .arg(layout.volume.x)
        .arg(layout.volume.y);
}

bool splitMosaic(std::span<const uint8_t> source, std::span<int16_t> volume,
                 const TiledImageLayout& layout) {
    if (!layout.holdsAllSlices() || source.size() / 2 < layout.imageSamples() ||
        volume.size() != layout.volume.samples())
        return false;
    const size_t imageRow = size_t(layout.imageSizeX);
    const size_t matrixRow = size_t(layout.volume.x);
    const size_t matrixRows = size_t(layout.volume.y);
    const size_t tilesPerRow = size_t(layout.tilesPerRow());
    int16_t* target = volume.data();
    for (size_t slice = 0; slice < size_t(layout.volume.slices); ++slice) {
        const size_t tileStart =
            matrixRows * imageRow * (slice / tilesPerRow) + matrixRow * (slice % tilesPerRow);
        for (size_t y = 0; y < matrixRows; ++y) {
            std::memcpy(target, source.data() + 2 * (tileStart + y * imageRow), 2 * matrixRow);
            target += matrixRow;
        }
    }
    return true;
}
