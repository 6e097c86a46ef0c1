// SPDX-License-Identifier: GPL-3.0-or-later
#include "regions/region_time_courses.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

int fromOne(int value) {
    return value < std::numeric_limits<int>::max() ? value + 1 : value;
}

} // namespace

bool isInside(const VolumeSize& size, int x, int y, int z) {
    return x >= 0 && x < size.x && y >= 0 && y < size.y && z >= 0 && z < size.slices;
}

RegionOfInterest& createROIFromVoxels(Regions& regions, const FMRProject& project, int nrOfVolumes,
                                      VoxelList voxels, const VoxelRectangle& rectangle,
                                      const RegionOptions& options) {
    RegionOfInterest region;
    region.FromSlice = fromOne(rectangle.slice);
    region.Left = fromOne(rectangle.left);
    region.Right = fromOne(rectangle.right);
    region.Top = fromOne(rectangle.top);
    region.Bottom = fromOne(rectangle.bottom);
    region.voxels = std::move(voxels);
    region.TimeCourseValues.assign(size_t(std::max(project.NrOfVolumes, 0)), 0.0f);
    region.TopVoxelRatio = options.TopVoxelRatio;
    region.TopVoxelSelectionMode = options.TopVoxelSelectionMode;
    updateTimeCourse(region, project, nrOfVolumes, options.BestVoxelSelection);
    return regions.add(std::move(region));
}

std::span<const int> voxelsInUse(const RegionOfInterest& region, bool bestVoxelSelection) {
    const size_t listed = region.SortedVoxelList.size();
    if (!bestVoxelSelection || region.NrOfVoxels() < 2 || !(region.TopVoxelRatio < 1.0f) ||
        listed == 0)
        return {};
    const double wanted = std::round(float(region.NrOfVoxels()) * region.TopVoxelRatio);
    return std::span(region.SortedVoxelList).first(size_t(std::clamp(wanted, 1.0, double(listed))));
}

void updateTimeCourse(RegionOfInterest& region, const FMRProject& project, int nrOfVolumes,
                      bool bestVoxelSelection) {
    const size_t count = std::min(
        {size_t(std::max(nrOfVolumes, 0)), project.volumes.size(), region.TimeCourseValues.size()});
    const std::span<const int> used = voxelsInUse(region, bestVoxelSelection);
    std::vector<int64_t> sums(count);
    region.samples.sum(project.volumes, project.size(), region.voxels, used, sums);
    const auto nrUsed = double(used.empty() ? region.voxels.size() : used.size());
    for (size_t t = 0; t < count; ++t)
        region.TimeCourseValues[t] = float(double(sums[t]) / nrUsed);
    region.CurrentTimePoint = int(count) - 1;
}
