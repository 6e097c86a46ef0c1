// The file of regions (.roi), versions 3 to 5.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "regions/regions.h"
#include "volume/volume_geometry.h"

#include <QByteArray>
#include <QString>
#include <optional>

/// A region as its file states it.
struct SavedRegion {
    VoxelRectangle rectangle; ///< from 0
    /// Nothing when the file lists rectangles only: the voxels are to be selected then.
    std::optional<VoxelList> voxels;
    std::optional<float> TopVoxelRatio;
    std::optional<int> TopVoxelSelectionMode;
    std::vector<int> SortedVoxelList;
    std::optional<float> MaxPSC;
    int voxelsOutside = 0; ///< listed voxels that are not in the volume, and were left out
};

struct SavedRegions {
    int fileVersion = 5;
    std::vector<SavedRegion> regions; ///< each has voxels, or a rectangle to select them
    QString fault;                    ///< why the text was not read to its end; empty if it was
};

enum class RoiFileResult { Ok, IncompatibleVersion, Damaged };

/// Reads the text of a file for volumes of this size. Each key is looked at before its value is
/// taken. Counts are checked against what the text can hold. Voxels outside the volume are left
/// out and counted, and their places in the sorted list with them.
[[nodiscard]] RoiFileResult parseROIFile(const QString& text, const VolumeSize& size,
                                         SavedRegions& saved);

/// The text of version 5.
[[nodiscard]] QByteArray roiFileText(const Regions& regions, const RegionOptions& options);

/// Reads the file, with its messages. False after one: it can't be opened, has an unknown version,
/// is damaged, or holds no region for this volume. Voxels outside are reported.
[[nodiscard]] bool readROIFile(const QString& fileName, const VolumeSize& size,
                               SavedRegions& saved);
/// Writes it. False after a message.
[[nodiscard]] bool writeROIFile(const QString& fileName, const Regions& regions,
                                const RegionOptions& options);
