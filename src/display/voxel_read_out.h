// What is known of one voxel.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "display/slice_mosaic_geometry.h"

#include <QString>
#include <optional>
#include <vector>

class QtCortivoDoc;
struct ShownMaps;

struct VoxelReadOut {
    struct MapValue {
        QString name;
        float value; ///< with its sign, whichever signs the map shows
    };

    VoxelPosition voxel;
    int volume = -1; ///< from 0; -1 when nothing has been measured
    int value = 0;   ///< in that volume, signed as in the model and the curves
    QString statistic;
    int decimals = 2; ///< of the values of maps
    std::vector<MapValue> maps;
};

/// A volume as it was read, before any correction: the first one, which the slices show at first.
inline constexpr int firstVolumeAsRead = -1;

/// The sample of a volume that is measured, or firstVolumeAsRead, and the values of the maps if
/// they have the size of the run's volumes. Nothing for a voxel outside these.
[[nodiscard]] std::optional<VoxelReadOut> voxelReadOut(const QtCortivoDoc& document,
                                                       const VoxelPosition& voxel, int volume,
                                                       const ShownMaps& maps);

/// In one line, all numbers from 1.
[[nodiscard]] QString voxelReadOutText(const VoxelReadOut& readOut);
