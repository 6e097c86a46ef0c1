// Volumes of interest: named sets of voxels in anatomical space.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <array>
#include <vector>

struct VOIVoxel {
    int x = 0;
    int y = 0;
    int z = 0;

    bool operator==(const VOIVoxel&) const = default;
};

/// A set of them, as a .voi file holds it. The voxels of all stand in one list.
struct VolumeOfInterest {
    QString ReferenceSpace = "CV"; ///< "TAL", "ACPC" or "CV" in the files that are written
    int OriginalVMRResolutionX = 1;
    int OriginalVMRResolutionY = 1;
    int OriginalVMRResolutionZ = 1;
    int OriginalVMROffsetX = 0;
    int OriginalVMROffsetY = 0;
    int OriginalVMROffsetZ = 0;
    int OriginalVMRFramingCubeDim = 256;
    int LeftRightConvention = 1;

    std::vector<QString> NameOfVOI;
    std::vector<std::array<int, 3>> ColorOfVOI; ///< red, green, blue, 0 to 255
    std::vector<int> VOIStart;                  ///< of each, its first voxel in VOIVoxels
    std::vector<int> VOICount;                  ///< of each, the number of its voxels
    std::vector<VOIVoxel> VOIVoxels;

    [[nodiscard]] int NrOfVOIs() const { return int(NameOfVOI.size()); }
    void add(const QString& name, const std::array<int, 3>& color,
             const std::vector<VOIVoxel>& voxels);
};
