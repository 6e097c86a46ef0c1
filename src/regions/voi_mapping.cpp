// SPDX-License-Identifier: GPL-3.0-or-later
#include "regions/voi_mapping.h"

#include "base/memory.h"
#include "regions/region_time_courses.h"
#include "volume/anatomy/vmr_volume.h"

#include <algorithm>
#include <limits>

namespace {

constexpr VolumeSize cube{cubeSide, cubeSide, cubeSide};

void include(int value, int& lowest, int& highest) {
    lowest = std::min(lowest, value);
    highest = std::max(highest, value);
}

void takeVoxel(const VOIVoxel& voxel, const VOIMapping& mapping, MappedVOI& mapped) {
    C3dVector point{float(voxel.x), float(voxel.y), float(voxel.z)};
    if (mapping.talairach)
        point = mapping.talairach->toACPC(point);
    point = mapping.cube.cubeToFunctional * point;
    const int x = nearestVoxel(point.x);
    const int y = nearestVoxel(point.y);
    const int z = nearestVoxel(point.z);
    if (!isInside(mapping.functional, x, y, z))
        return;
    mapped.voxels.append(x, y, z);
    include(x, mapped.minX, mapped.maxX);
    include(y, mapped.minY, mapped.maxY);
    include(z, mapped.minZ, mapped.maxZ);
}

void mapVolume(const VolumeOfInterest& volumes, size_t number, const VOIMapping& mapping,
               MappedVOIs& result) {
    MappedVOI& mapped = result.volumes[number];
    const VOIVoxel* voxel = volumes.VOIVoxels.data() + volumes.VOIStart[number];
    for (int i = 0; i < volumes.VOICount[number]; ++i, ++voxel) {
        if (!isInside(cube, voxel->x, voxel->y, voxel->z)) {
            ++result.voxelsOutOfRange;
            continue;
        }
        if (number < size_t(std::numeric_limits<uint8_t>::max()))
            result.image[cubeIndex(voxel->x, voxel->y, voxel->z)] = uint8_t(number + 1);
        takeVoxel(*voxel, mapping, mapped);
    }
    mapped.slice = (mapped.minZ + mapped.maxZ + 1) / 2;
    mapped.sliceOutOfBounds =
        mapped.voxels.size() == 0 || mapped.slice >= mapping.functional.slices;
}

} // namespace

bool mapVOIsToFunctional(const VolumeOfInterest& volumes, const VOIMapping& mapping,
                         MappedVOIs& mapped) {
    mapped = MappedVOIs();
    // Lists that grow hold up to three times what they need while they are moved.
    constexpr size_t bytesOfVoxel = 9 * sizeof(int);
    if (!memoryIsAvailable(cubeVoxels + volumes.VOIVoxels.size() * bytesOfVoxel, 1))
        return false;
    try {
        mapped.image.assign(cubeVoxels, 0);
        mapped.volumes.resize(volumes.NameOfVOI.size());
        for (size_t number = 0; number < mapped.volumes.size(); ++number)
            mapVolume(volumes, number, mapping, mapped);
    } catch (const std::bad_alloc&) {
        mapped = MappedVOIs();
        return false;
    }
    return true;
}
