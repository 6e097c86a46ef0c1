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
    std::optional<float> TopVoxelRatio; ///< 0 to 1
    std::optional<int> TopVoxelSelectionMode;
    std::vector<int> SortedVoxelList; ///< each position in `voxels` once, or empty
    std::optional<float> MaxPSC;
    int voxelsOutside = 0; ///< listed voxels that are not in the volume, and were left out
};

/// More windows than any operator has: a damaged file can't ask for endless work.
inline constexpr int maximumSavedRegions = 500;

struct SavedRegions {
    int fileVersion = 5;
    std::vector<SavedRegion> regions; ///< each has voxels, or a rectangle to select them
    int regionsOutside = 0;           ///< left out, since all their voxels were outside the volume
    QString fault;                    ///< why the text was not read to its end; empty if it was
};

enum class RoiFileResult { Ok, IncompatibleVersion, Damaged, OutOfMemory };

/// Reads the text of a file for volumes of this size. Each key is looked at before its value is
/// taken. Counts are checked against what the text and the volume can hold. Voxels outside the
/// volume are left out and counted, and their places in the sorted list with them; a sorted list
/// that names a position twice, or one that the list of voxels hasn't, is dropped. No regions
/// unless the result is Ok.
[[nodiscard]] RoiFileResult parseROIFile(const QString& text, const VolumeSize& size,
                                         SavedRegions& saved);

/// The text of version 5.
[[nodiscard]] QByteArray roiFileText(const Regions& regions, const RegionOptions& options);

/// Reads the file, with its messages, which are modeless: the run that it is read for is still
/// there afterwards. False after one: it can't be opened, has an unknown version,
/// is damaged, or has all its regions outside the volume. A file may hold no regions. Voxels
/// outside are reported.
[[nodiscard]] bool readROIFile(const QString& fileName, const VolumeSize& size,
                               SavedRegions& saved);
/// Writes it. False after a message.
[[nodiscard]] bool writeROIFile(const QString& fileName, const Regions& regions,
                                const RegionOptions& options);
