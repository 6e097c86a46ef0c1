// The files that a scanner writes for one volume. A further data type adds its writer here.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "scan_geometry.h"

#include <QByteArray>
#include <QString>
#include <cstdint>
#include <span>
#include <vector>

struct ScannerFile {
    QString name; ///< without folder
    QByteArray bytes;
};

/// Which volume of which run.
struct MeasuredVolume {
    const SimulationOptions& options;
    const ScanGeometry& geometry;
    int volume; ///< from 0
};

/// How a data type names its files.
struct FileNaming {
    QString prefix;
    QString delimiter;
    QString extension;
    int width;         ///< digits of both numbers
    int firstVolumeNr; ///< middle number: series of a mosaic, volume of single slices
    int firstImageNr;  ///< last number: volume of a mosaic, slice of single slices
    int nrOfFilesPerVolume;
};

[[nodiscard]] FileNaming fileNaming(const SimulationOptions& options);
/// Name of one file of a volume; file counts from 0.
[[nodiscard]] QString fileName(const SimulationOptions& options, int volume, int file);
/// All files of a volume in slice order. `samples` holds the whole volume.
[[nodiscard]] std::vector<ScannerFile> scannerFiles(const MeasuredVolume& measured,
                                                    std::span<const uint16_t> samples);
/// Pixels in a row and in a column of a mosaic image.
[[nodiscard]] int mosaicColumns(const ScanGeometry& geometry);
[[nodiscard]] int mosaicRows(const ScanGeometry& geometry);
