// The reference points of a brain (.tal).
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <array>

using CubePoint = std::array<int, 3>; ///< x, y, z in voxels of the AC-PC cube

struct TalairachPoints {
    int version = 1;
    QString vmrName;
    /// In the order of the file the seventh line is the eighth point and the eighth the seventh.
    CubePoint referencePoint1{};
    CubePoint referencePoint2{};
    CubePoint referencePoint3{};
    CubePoint referencePoint4{};
    CubePoint referencePoint5{};
    CubePoint referencePoint6{};
    CubePoint referencePoint7{};
    CubePoint referencePoint8{};
};

/// False for a text that ends early or holds no number where one belongs; unchanged then.
[[nodiscard]] bool parseTalairachPoints(const QString& text, TalairachPoints& points);
/// False after a message.
[[nodiscard]] bool readTalairachFile(const QString& path, TalairachPoints& points);
