// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/motion_detail.h"

namespace {

constexpr double largestRatio = 2.0;
constexpr int reach = 2; ///< voxels to either side of a fourth difference

/// Over the voxels of a row of the volume, as far as they have neighbours along the axis, which are
/// `stride` apart.
struct Differences {
    double ofFourth = 0.0;
    double ofFirst = 0.0;

    void add(const int16_t* row, int count, ptrdiff_t stride) {
        const auto value = [](int16_t sample) { return float(uint16_t(sample)); };
        // In float within a row: its 24 bits are plenty for a ratio.
        float fourths = 0.0f, firsts = 0.0f;
        for (int i = 0; i < count; ++i) {
            const int16_t* at = row + i;
            const float before = value(at[-stride]), behind = value(at[stride]);
            const float slope = 0.5f * (behind - before);
            const float fourth = 6.0f * value(*at) - 4.0f * (before + behind) +
                                 value(at[-2 * stride]) + value(at[2 * stride]);
            const float square = slope * slope;
            fourths += square * fourth * fourth;
            firsts += square * square;
        }
        ofFourth += double(fourths);
        ofFirst += double(firsts);
    }
};

bool isTooSharp(const VolumeGrid& grid, std::span<const int16_t> volume, size_t axis) {
    if (grid.size[axis] <= 2 * reach)
        return false;
    std::array<int, 3> first{}, end = grid.size;
    first[axis] = reach;
    end[axis] -= reach;
    const std::array<ptrdiff_t, 3> strides{1, grid.size[0],
                                           ptrdiff_t(grid.size[0]) * ptrdiff_t(grid.size[1])};
    Differences differences;
    for (int z = first[2]; z < end[2]; ++z)
        for (int y = first[1]; y < end[1]; ++y)
            differences.add(volume.data() + z * strides[2] + y * strides[1] + first[0],
                            end[0] - first[0], strides[axis]);
    return differences.ofFourth > largestRatio * largestRatio * differences.ofFirst;
}

} // namespace

std::array<bool, 3> axesTooSharp(const VolumeGrid& grid, std::span<const int16_t> volume) {
    std::array<bool, 3> result{};
    if (volume.size() == grid.samples())
        for (size_t axis = 0; axis < 3; ++axis)
            result[axis] = isTooSharp(grid, volume, axis);
    return result;
}
