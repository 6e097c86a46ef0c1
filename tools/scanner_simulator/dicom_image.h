// One image of a simulated run as a DICOM file, and the protocol block of a mosaic.
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

/// The complete file; the samples are at its end.
[[nodiscard]] QByteArray dicomImageFile(const MeasuredVolume& measured, const DicomImage& image,
                                        std::span<const uint16_t> pixels);
/// Corner of an image of this size whose centre is that of a slice.
[[nodiscard]] Point cornerOf(const ScanGeometry& geometry, int slice, int columns, int rows);
/// The image of one slice.
[[nodiscard]] DicomImage sliceImage(const ScanGeometry& geometry, int volume, int slice);

/// The text block in which a mosaic states how it was measured. Lines "key = value" with the key
/// padded to 40 columns, between begin and end marks: timing in microseconds, geometry of each
/// slice in millimetres, order of the slices.
[[nodiscard]] QByteArray protocolBlock(const SimulationOptions& options,
                                       const ScanGeometry& geometry);

/// Echo time of all simulated runs.
inline constexpr int echoTimeMicroseconds = 30000;
