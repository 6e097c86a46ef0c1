// What is known of one voxel.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "display/slice_mosaic_geometry.h"

#include <QString>
#include <optional>
#include <vector>

class QtCortivoDoc;
struct ShownMaps;

/// A volume as it was read, before any correction: the first one, which the slices show at first.
/// Where volumes are skipped at the start, it is none of those that are counted.
inline constexpr int firstVolumeAsRead = -1;

struct VoxelReadOut {
    struct MapValue {
        QString name;
        float value; ///< with its sign, whichever signs the map shows
    };

    VoxelPosition voxel;
    int volume = firstVolumeAsRead; ///< from 0, or this
    /// In that volume, signed as in the model and the curves; nothing when it wasn't measured.
    std::optional<int> value;
    QString statistic;
    int decimals = 2; ///< of the values of maps
    std::vector<MapValue> maps;
};

/// The sample of a volume that is measured, or firstVolumeAsRead, and the values of the maps if
/// they have the size of the run's volumes. Nothing for a voxel outside these.
[[nodiscard]] std::optional<VoxelReadOut> voxelReadOut(const QtCortivoDoc& document,
                                                       const VoxelPosition& voxel, int volume,
                                                       const ShownMaps& maps);

/// "volume 3", or "first volume as read".
[[nodiscard]] QString volumeName(int volume);
/// The value of a map with its decimals.
[[nodiscard]] QString mapValueText(const VoxelReadOut& readOut, const VoxelReadOut::MapValue& map);
/// In one line, all numbers from 1.
[[nodiscard]] QString voxelReadOutText(const VoxelReadOut& readOut);
