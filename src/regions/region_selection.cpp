// SPDX-License-Identifier: GPL-3.0-or-later
#include "regions/region_selection.h"

#include "base/messages.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace {

/// Voxels of a rectangle in some slices, inside the volume: first inclusive, ends exclusive.
struct Box {
    SliceRange slices;
    int left;
    int right;
    int top;
    int bottom;

    Box(const VoxelRectangle& rectangle, const SliceRange& range, const VolumeSize& size)
        : slices(range), left(std::max(std::min(rectangle.left, rectangle.right), 0)),
          right(std::min(std::max(rectangle.left, rectangle.right), size.x)),
          top(std::max(std::min(rectangle.top, rectangle.bottom), 0)),
          bottom(std::min(std::max(rectangle.top, rectangle.bottom), size.y)) {}

    [[nodiscard]] size_t voxels() const {
        return size_t(std::max(slices.last - slices.first + 1, 0)) *
               size_t(std::max(right - left, 0)) * size_t(std::max(bottom - top, 0));
    }
};

/// Whether the maps that are shown count a voxel as active.
class ActiveTest {
public:
    ActiveTest(const SelectionMaps& maps, bool selectOnlyMapVoxels)
        : maps_(maps), pluginMaps_(selectOnlyMapVoxels && !maps.pluginMaps.empty()),
          contrasts_(!maps.maps.ContrastMaps.empty() && maps.maps.NrOfActiveContrasts > 0) {}

    /// `pixel` counts in the slice.
    [[nodiscard]] bool passes(int slice, size_t pixel) const {
        if (pluginMaps_)
            return reachesThreshold(size_t(slice) * maps_.size.sliceSamples() + pixel);
        if (!contrasts_)
            return true;
        const std::vector<std::vector<int>>& clusters = maps_.maps.ClusterSizeSlices;
        return size_t(slice) < clusters.size() && pixel < clusters[size_t(slice)].size() &&
               clusters[size_t(slice)][pixel] >= maps_.ClusterSizePixels;
    }

private:
    [[nodiscard]] bool reachesThreshold(size_t voxel) const {
        return std::ranges::any_of(maps_.pluginMaps, [&](const std::span<const float>& map) {
            return voxel < map.size() && std::fabs(map[voxel]) >= maps_.Threshold;
        });
    }

    const SelectionMaps& maps_;
    bool pluginMaps_;
    bool contrasts_;
};

template<typename Passes> VoxelList voxelsThatPass(const Box& box, int sizeX, Passes passes) {
    VoxelList voxels;
    for (int slice = box.slices.first; slice <= box.slices.last; ++slice)
        for (int y = box.top; y < box.bottom; ++y)
            for (int x = box.left; x < box.right; ++x)
                if (passes(slice, size_t(y) * size_t(sizeX) + size_t(x)))
                    voxels.append(x, y, slice);
    return voxels;
}

} // namespace

SliceRange selectedSlices(int slice, int nrOfSlices, int slicesOfVolume) {
    const int64_t others = std::max(nrOfSlices, 1) - 1;
    const int64_t first = std::max<int64_t>(int64_t(slice) - others / 2, 0);
    const int64_t last = std::min<int64_t>(int64_t(slice) + (others + 1) / 2, slicesOfVolume - 1);
    return first <= last ? SliceRange{int(first), int(last)} : SliceRange{};
}

VoxelList selectROIVoxels(const SelectionMaps& maps, bool selectOnlyMapVoxels, int nrOfSlices,
                          const VoxelRectangle& rectangle) {
    const Box box(rectangle, selectedSlices(rectangle.slice, nrOfSlices, maps.size.slices),
                  maps.size);
    // A list that grows holds its voxels up to three times.
    if (!memoryIsAvailable(box.voxels(), 3 * 3 * sizeof(int))) {
        showModelessWarning(QStringLiteral("ERROR: Insufficient memory!"));
        return {};
    }
    const ActiveTest test(maps, selectOnlyMapVoxels);
    const VoxelList active = voxelsThatPass(
        box, maps.size.x, [&](int slice, size_t pixel) { return test.passes(slice, pixel); });
    if (active.size() != 0)
        return active;
    return voxelsThatPass(box, maps.size.x, [](int, size_t) { return true; });
}
