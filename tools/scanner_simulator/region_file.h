// Regions as a file that the operator can load.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "scan_geometry.h"

#include <QByteArray>
#include <vector>

/// The regions 1 to `nrOfRegions` of a map over the voxels, in this order (.roi, version 5). A
/// region without voxels is left out.
[[nodiscard]] QByteArray regionFileText(const ScanGeometry& geometry,
                                        const std::vector<uint8_t>& map, int nrOfRegions);
