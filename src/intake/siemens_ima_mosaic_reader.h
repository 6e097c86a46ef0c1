// Data type "SIEMENS_IMA" with mosaic: ".ima" files that hold many slices.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "intake/siemens_ima_header.h"
#include "intake/square_tiled_image_reader.h"

class SiemensImaMosaicReader : public SquareTiledImageReader {
public:
    explicit SiemensImaMosaicReader(const IntakeContext& context)
        : SquareTiledImageReader(context, imaHeaderBytes, TileOrder::Ascending) {}
    /// Geometry from the first file.
    [[nodiscard]] bool readHeaders() override;

private:
    [[nodiscard]] QString nameOf(qint64 study, qint64 image) const override;
};
