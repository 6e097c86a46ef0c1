// Positions of a stack of slices as text (.pos).
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "volume/fmr_project.h"

#include <QString>

struct PositionFile {
    int version = 1;
    /// Without centres below version 3: positionInfoValid is then 0. The coordinate system is the
    /// first value of the file.
    FMRPositionInfo position;
    int rows = 0;
    int columns = 0;
    float sliceThickness = 0.0f;
    float gapThickness = 0.0f;

    [[nodiscard]] bool hasCentres() const { return version >= 3; }
};

/// False for a text that ends early or holds no finite number where one belongs; `file` is then
/// unchanged.
[[nodiscard]] bool parsePositions(const QString& text, PositionFile& file);
/// False after a message.
[[nodiscard]] bool readPositionFile(const QString& path, PositionFile& file);
