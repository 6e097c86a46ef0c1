// Geometry of a simulated scan.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "simulation_options.h"

#include <cstddef>
#include <cstdint>
#include <span>

/// Millimetres; x to the left of the head, y to its back, z to its top.
struct Point {
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;
};

/// Transverse slices from bottom to top around the head's centre.
struct ScanGeometry {
    int sizeX;
    int sizeY;
    int nrOfSlices;
    double pixelSize;      ///< millimetres
    double sliceDistance;  ///< millimetres between slice centres
    double sliceThickness; ///< millimetres

    explicit ScanGeometry(const SimulationOptions& options);
    [[nodiscard]] size_t sliceVoxels() const { return size_t(sizeX) * size_t(sizeY); }
    [[nodiscard]] size_t voxels() const { return sliceVoxels() * size_t(nrOfSlices); }
    [[nodiscard]] double sliceGap() const { return sliceDistance - sliceThickness; }
    /// Half the coverage of the slices from bottom to top.
    [[nodiscard]] double halfCoverage() const { return 0.5 * sliceDistance * nrOfSlices; }
    /// Samples of one slice of a volume.
    [[nodiscard]] std::span<const uint16_t> slice(std::span<const uint16_t> samples,
                                                  int slice) const {
        return samples.subspan(size_t(slice) * sliceVoxels(), sliceVoxels());
    }
    /// Centre of a voxel, relative to the centre of the volume.
    [[nodiscard]] Point voxelCentre(int x, int y, int slice) const {
        return {(x - 0.5 * (sizeX - 1)) * pixelSize, (y - 0.5 * (sizeY - 1)) * pixelSize,
                (slice - 0.5 * (nrOfSlices - 1)) * sliceDistance};
    }
    /// Centre of a slice in the scanner's patient coordinates. The head is off-centre, so that no
    /// coordinate is zero.
    [[nodiscard]] Point sliceCentreInScanner(int slice) const {
        return {2.5, -11.25, 14.0 + (slice - 0.5 * (nrOfSlices - 1)) * sliceDistance};
    }
    /// Tiles in a row, and in a column, of a mosaic that holds all slices.
    [[nodiscard]] int mosaicTiles() const;
};
