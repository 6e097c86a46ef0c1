// Readers of the Siemens data types that are older than DICOM.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "intake/raw_volume_reader.h"
#include "intake/siemens_ima_header.h"
#include "intake/tiled_image.h"

/// Data type "SIEMENS_IMA" without mosaic: one ".ima" file for each slice.
class SiemensImaSliceReader : public RawVolumeReader {
public:
    explicit SiemensImaSliceReader(const IntakeContext& context) : RawVolumeReader(context) {}
    [[nodiscard]] bool readFirstVolume() override;
    [[nodiscard]] bool readVolume(int volume) override;
    /// Geometry from the first file.
    [[nodiscard]] bool readHeaders() override;

private:
    [[nodiscard]] QString fileName(Stage stage, int volume, int slice) const;
    [[nodiscard]] bool readSlices(Stage stage, int volume);
};

/// Base of the mosaic readers: square mosaics, one or two for each volume.
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

/// Data type "SIEMENS_IMA" with mosaic: ".ima" files that hold many slices.
class SiemensImaMosaicReader : public SquareTiledImageReader {
public:
    explicit SiemensImaMosaicReader(const IntakeContext& context)
        : SquareTiledImageReader(context, imaHeaderBytes, TileOrder::Ascending) {}
    /// Geometry from the first file.
    [[nodiscard]] bool readHeaders() override;

private:
    [[nodiscard]] QString nameOf(qint64 study, qint64 image) const override;
};

/// Data type "SIEMENSPIXELDATA": mosaics without header, tiles from the last slice to the first.
class SiemensPixelDataReader : public SquareTiledImageReader {
public:
    explicit SiemensPixelDataReader(const IntakeContext& context)
        : SquareTiledImageReader(context, 0, TileOrder::Descending) {}

private:
    /// Prefix and image number of at least three digits; there is no study number.
    [[nodiscard]] QString nameOf(qint64 study, qint64 image) const override;
};
