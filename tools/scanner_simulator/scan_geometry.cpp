// SPDX-License-Identifier: GPL-3.0-or-later
#include "scan_geometry.h"

#include <algorithm>
#include <cmath>

namespace {

double toTenths(double millimetres) {
    return std::round(millimetres * 10.0) / 10.0;
}

} // namespace

ScanGeometry::ScanGeometry(const SimulationOptions& options)
    : sizeX(options.sizeX), sizeY(options.sizeY), nrOfSlices(options.nrOfSlices),
      pixelSize(double(options.fieldOfView) / options.sizeX), sliceDistance(options.sliceDistance) {
    // Slice distances below 2 mm are unusual in functional imaging; many slices cover more than 100
    // mm.
    if (sliceDistance <= 0.0)
        sliceDistance = std::max(2.0, toTenths(100.0 / nrOfSlices));
    sliceThickness = std::max(0.1, toTenths(0.8 * sliceDistance));
}

int ScanGeometry::mosaicTiles() const {
    int tiles = 1;
    while (tiles * tiles < nrOfSlices)
        ++tiles;
    return tiles;
}
