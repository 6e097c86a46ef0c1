// SPDX-License-Identifier: GPL-3.0-or-later
#include "region_file.h"

#include "base/file_writing.h"

#include <algorithm>
#include <array>

namespace {

using Voxel = std::array<int, 3>; ///< x, y, slice from 0

std::vector<Voxel> voxelsOf(const ScanGeometry& geometry, const std::vector<uint8_t>& map,
                            int region) {
    std::vector<Voxel> voxels;
    size_t voxel = 0;
    for (int slice = 0; slice < geometry.nrOfSlices; ++slice)
        for (int y = 0; y < geometry.sizeY; ++y)
            for (int x = 0; x < geometry.sizeX; ++x, ++voxel)
                if (map[voxel] == region)
                    voxels.push_back({x, y, slice});
    return voxels;
}

QByteArray entry(const char* key, int value) {
    return formatted("%-23s%i\n", key, value);
}

QByteArray windowText(const std::vector<Voxel>& voxels) {
    Voxel least = voxels.front();
    Voxel greatest = least;
    QByteArray lines;
    for (const Voxel& voxel : voxels) {
        for (size_t axis = 0; axis < 3; ++axis) {
            least[axis] = std::min(least[axis], voxel[axis]);
            greatest[axis] = std::max(greatest[axis], voxel[axis]);
        }
        lines += formatted("%3i %3i %3i\n", voxel[0], voxel[1], voxel[2]);
    }
    // The rectangle counts from 1; right and bottom are the first outside.
    return entry("NrOfTCs:", 1) + entry("FromSlice:", (least[2] + greatest[2]) / 2 + 1) +
           entry("Left:", least[0] + 1) + entry("Right:", greatest[0] + 2) +
           entry("Top:", least[1] + 1) + entry("Bottom:", greatest[1] + 2) +
           entry("NrOfVoxels:", int(voxels.size())) + lines + '\n';
}

} // namespace

QByteArray regionFileText(const ScanGeometry& geometry, const std::vector<uint8_t>& map,
                          int nrOfRegions) {
    QByteArray windows;
    int nrOfWindows = 0;
    for (int region = 1; region <= nrOfRegions; ++region)
        if (const std::vector<Voxel> voxels = voxelsOf(geometry, map, region); !voxels.empty()) {
            windows += windowText(voxels);
            ++nrOfWindows;
        }
    return entry("FileVersion:", 5) + '\n' + entry("SaveVoxelsInROIs:", 1) + '\n' +
           entry("SaveSortedVoxelList:", 0) + '\n' + entry("SaveROIMaxPSC:", 0) + '\n' +
           entry("NrOfTCPlots:", nrOfWindows) + '\n' + windows;
}
