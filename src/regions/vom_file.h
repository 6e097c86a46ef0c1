// The file of maps over sets of voxels (.vom).
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/rgb_color.h"
#include "regions/region_of_interest.h"

#include <QByteArray>
#include <QString>

/// Where a map of the file comes from.
struct VomSource {
    QString mapFile; ///< empty when it was in no file
    int index = 1;   ///< its number in that file, from 1
    int type = 0;

    bool operator==(const VomSource&) const = default;
};

/// One set of voxels.
struct VoxelMap {
    QString name;
    RgbColor color{255, 0, 0};
    VoxelList voxels;
    std::vector<float> values; ///< voxel by voxel one for each source of the header

    bool operator==(const VoxelMap&) const = default;
};

/// What the file says of all sets.
struct VomHeader {
    int resolutionRelativeToVMR = 1;
    int leftRightConvention = 1;
    QString originalVMRFile; ///< or the project that the voxels belong to
    /// Of the values that each voxel has; none for a file of voxels alone.
    std::vector<VomSource> sources{VomSource()};

    bool operator==(const VomHeader&) const = default;
};

/// Version 2. The bounding box is that of all voxels; from 0 to 0 without any. Line ends, control
/// characters and double quotes in names are lost.
[[nodiscard]] QByteArray vomFileText(const VomHeader& header, const std::vector<VoxelMap>& maps);
/// Reads version 2; the bounding box is that of the voxels anyway and is passed over. False, with
/// `fault` saying in which line and why, and the others unchanged: another version, a missing key,
/// a number that isn't finite, counts that the text does not hold.
[[nodiscard]] bool parseVom(const QString& text, VomHeader& header, std::vector<VoxelMap>& maps,
                            QString& fault);

/// Writes it. False after "Can not open VOI-VMP (VOM) file: %1".
[[nodiscard]] bool writeVomFile(const QString& path, const VomHeader& header,
                                const std::vector<VoxelMap>& maps);
/// Reads it. False after that message, or one that names the fault; nothing is changed then.
[[nodiscard]] bool readVomFile(const QString& path, VomHeader& header, std::vector<VoxelMap>& maps);
