// What the readers of Siemens mosaics older than DICOM share: square tiled images, one or two for a
// volume.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "intake/raw_volume_reader.h"
#include "intake/tiled_image.h"

class SquareTiledImageReader : public RawVolumeReader {
public:
    [[nodiscard]] bool readFirstVolume() override;
    [[nodiscard]] bool readVolume(int volume) override;

protected:
    enum class TileOrder {
        Ascending, ///< the first tile is the first slice
        Descending ///< the first tile is the last slice
    };

    SquareTiledImageReader(const IntakeContext& context, qint64 headerBytes, TileOrder order)
        : RawVolumeReader(context), headerBytes_(headerBytes), order_(order) {}

    /// Name of the file with these numbers.
    [[nodiscard]] virtual QString nameOf(qint64 study, qint64 image) const = 0;

private:
    /// `file` is 0 or 1 in all of these.
    [[nodiscard]] QString fileName(Stage stage, int volume, int file) const;
    [[nodiscard]] TiledImageLayout layoutOf(int file) const;
    [[nodiscard]] bool readFiles(Stage stage, int volume);
    [[nodiscard]] bool readTiles(Stage stage, int volume, int file);
    [[nodiscard]] bool storeTiles(std::span<const uint8_t> samples, int file,
                                  std::span<int16_t> volume) const;

    qint64 headerBytes_;
    TileOrder order_;
};
