// One image of a simulated run as a DICOM file.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "scanner_files.h"

/// What differs between a mosaic of all slices and an image of one.
struct DicomImage {
    int columns;
    int rows;
    QByteArray type;
    Point corner; ///< of the image, patient coordinates
    int instance;
    int file; ///< in its volume, from 0
};

/// The whole file; the samples stand at its end.
[[nodiscard]] QByteArray dicomImageFile(const MeasuredVolume& measured, const DicomImage& image,
                                        std::span<const uint16_t> pixels);
/// Corner of an image of this size whose centre is that of a slice.
[[nodiscard]] Point cornerOf(const ScanGeometry& geometry, int slice, int columns, int rows);
/// The image of one slice.
[[nodiscard]] DicomImage sliceImage(const ScanGeometry& geometry, int volume, int slice);
