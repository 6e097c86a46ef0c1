// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/mosaic.h"

#include <cstring>

bool MosaicTiling::holdsAllSlices() const {
    if (matrixSizeX <= 0 || matrixSizeY <= 0 || nrOfSlices <= 0 || mosaicSizeX < matrixSizeX ||
        mosaicSizeY < matrixSizeY)
        return false;
    return int64_t(mosaicSizeX / matrixSizeX) * (mosaicSizeY / matrixSizeY) >= nrOfSlices;
}

QString unusableLayoutMessage(const MosaicTiling& layout) {
    return QString("ERROR: A mosaic of %1 x %2 does not hold %3 slices of %4 x %5 - check settings "
                   "file !")
        .arg(layout.mosaicSizeX)
        .arg(layout.mosaicSizeY)
        .arg(layout.nrOfSlices)
        .arg(layout.matrixSizeX)
        .arg(layout.matrixSizeY);
}

bool splitMosaic(std::span<const uint8_t> source, std::span<int16_t> volume,
                 const MosaicTiling& layout) {
    if (!layout.holdsAllSlices() || source.size() / 2 < layout.mosaicSamples() ||
        volume.size() != layout.volumeSamples())
        return false;
    const size_t mosaicRow = size_t(layout.mosaicSizeX);
    const size_t matrixRow = size_t(layout.matrixSizeX);
    const size_t matrixRows = size_t(layout.matrixSizeY);
    const size_t tilesPerRow = size_t(layout.tilesPerRow());
    int16_t* target = volume.data();
    for (size_t slice = 0; slice < size_t(layout.nrOfSlices); ++slice) {
        const size_t tileStart =
            matrixRows * mosaicRow * (slice / tilesPerRow) + matrixRow * (slice % tilesPerRow);
        for (size_t y = 0; y < matrixRows; ++y) {
            std::memcpy(target, source.data() + 2 * (tileStart + y * mosaicRow), 2 * matrixRow);
            target += matrixRow;
        }
    }
    return true;
}
