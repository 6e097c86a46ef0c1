// The file of a map over a set of voxels (.vom).
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/rgb_color.h"
#include "regions/region_of_interest.h"

#include <QByteArray>
#include <QString>

/// One set of voxels with a value each.
struct VoxelMap {
    QString name;
    RgbColor color{255, 0, 0};
    VoxelList voxels;
    std::vector<float> values; ///< one for each voxel
};

/// What the file says of the maps as a whole.
struct VomHeader {
    int resolutionRelativeToVMR = 1;
    int leftRightConvention = 1;
    QString originalVMRFile; ///< or the project that the voxels belong to
};

/// Version 2, with the values of one map. The bounding box is that of all voxels; from 0 to 0
/// without any.
[[nodiscard]] QByteArray vomFileText(const VomHeader& header, const std::vector<VoxelMap>& maps);
/// Writes it. False after "Can not open VOI-VMP (VOM) file: %1".
[[nodiscard]] bool writeVomFile(const QString& path, const VomHeader& header,
                                const std::vector<VoxelMap>& maps);
