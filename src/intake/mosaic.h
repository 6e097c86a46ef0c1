// A mosaic holds the slices of a volume as tiles of one large image.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/settings/run_settings.h"

#include <QString>
#include <cstdint>
#include <span>

/// Sizes in samples, as the settings state them.
struct MosaicTiling {
    int mosaicSizeX = 0;
    int mosaicSizeY = 0;
    int matrixSizeX = 0;
    int matrixSizeY = 0;
    int nrOfSlices = 0;

    [[nodiscard]] static MosaicTiling of(const RunSettings& settings) {
        return {settings.MosaicResolutionX, settings.MosaicResolutionY, settings.MatrixSizeX,
                settings.MatrixSizeY, settings.NrOfSlices};
    }
    /// True when all sizes are positive and the mosaic has a tile for every slice.
    [[nodiscard]] bool holdsAllSlices() const;
    /// Only for a layout that holds all slices.
    [[nodiscard]] int tilesPerRow() const { return mosaicSizeX / matrixSizeX; }
    [[nodiscard]] size_t mosaicSamples() const { return size_t(mosaicSizeX) * size_t(mosaicSizeY); }
    [[nodiscard]] size_t volumeSamples() const {
        return size_t(matrixSizeX) * size_t(matrixSizeY) * size_t(nrOfSlices);
    }
};

/// What to tell about a layout that does not hold all slices.
[[nodiscard]] QString unusableLayoutMessage(const MosaicTiling& layout);

/// Copies the tiles, row by row from the top left, to the slices of `volume`. `source` holds the
/// samples of the mosaic in the byte order of this machine. False, with nothing copied, when the
/// layout does not hold all slices, the source less than the whole mosaic, or the volume has
/// another size.
[[nodiscard]] bool splitMosaic(std::span<const uint8_t> source, std::span<int16_t> volume,
                               const MosaicTiling& layout);
