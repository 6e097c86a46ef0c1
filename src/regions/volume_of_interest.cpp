// SPDX-License-Identifier: GPL-3.0-or-later
#include "regions/volume_of_interest.h"

void VolumeOfInterest::add(const QString& name, const std::array<int, 3>& color,
                           const std::vector<VOIVoxel>& voxels) {
    NameOfVOI.push_back(name);
    ColorOfVOI.push_back(color);
    VOIStart.push_back(int(VOIVoxels.size()));
    VOICount.push_back(int(voxels.size()));
    VOIVoxels.insert(VOIVoxels.end(), voxels.begin(), voxels.end());
}
