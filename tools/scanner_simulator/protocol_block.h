// The text block in which a mosaic states how it was measured.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "scan_geometry.h"

#include <QByteArray>

/// Lines "key = value" with the key padded to 40 columns, between its begin and end marks: timing
/// in microseconds, geometry of each slice in millimetres, order of the slices.
[[nodiscard]] QByteArray protocolBlock(const SimulationOptions& options,
                                       const ScanGeometry& geometry);

/// Echo time of all simulated runs.
inline constexpr int echoTimeMicroseconds = 30000;
