// Mosaics: image files that hold the slices of a volume as tiles of one large image.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/settings/run_settings.h"
#include "volume/volume_geometry.h"

#include <QString>
#include <cstdint>
#include <span>

/// Sizes in samples: of the image from the settings, of its slices from the run.
struct TiledImageLayout {
    int imageSizeX = 0;
    int imageSizeY = 0;
    VolumeSize volume; ///< of the slices in it

    [[nodiscard]] static TiledImageLayout of(const RunSettings& settings,
                                             const VolumeGeometry& geometry) {
        return {settings.MosaicResolutionX, settings.MosaicResolutionY, geometry.size()};
    }
    /// True when all sizes are positive and the image has a tile for every slice.
    [[nodiscard]] bool holdsAllSlices() const;
    /// Only for a layout that holds all slices.
    [[nodiscard]] int tilesPerRow() const { return imageSizeX / volume.x; }
    [[nodiscard]] size_t imageSamples() const { return size_t(imageSizeX) * size_t(imageSizeY); }
};

/// The message for a layout that does not hold all slices.
[[nodiscard]] QString unusableLayoutMessage(const TiledImageLayout& layout);

/// Copies the tiles, row by row from the top left, to the slices of `volume`. `source` holds the
/// samples of the image in the byte order of this machine. False, with nothing copied, when the
/// layout does not hold all slices, the source is shorter than the image, or the volume has another
/// size.
[[nodiscard]] bool splitMosaic(std::span<const uint8_t> source, std::span<int16_t> volume,
                               const TiledImageLayout& layout);
