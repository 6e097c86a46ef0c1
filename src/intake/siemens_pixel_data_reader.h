// Data type "SIEMENSPIXELDATA": mosaics without header, tiles from the last slice to the first.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "intake/square_tiled_image_reader.h"

class SiemensPixelDataReader : public SquareTiledImageReader {
public:
    explicit SiemensPixelDataReader(const IntakeContext& context)
        : SquareTiledImageReader(context, 0, TileOrder::Descending) {}

private:
    /// Prefix and image number of at least three digits; there is no study number.
    [[nodiscard]] QString nameOf(qint64 study, qint64 image) const override;
};
