// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/motion_samples.h"

#include <algorithm>
#include <new>

namespace {

/// Voxels at a border have a neighbour on one side only. A volume of one or two slices has no
/// others.
struct Inside {
    explicit Inside(int size) : first(size > 2 ? 1 : 0), end(size - first) {}
    int first;
    int end;
};

template<typename Visit> void forVoxelsInside(const VolumeGrid& grid, const Visit& visit) {
    const Inside x(grid.size[0]), y(grid.size[1]), z(grid.size[2]);
    for (int slice = z.first; slice < z.end; ++slice)
        for (int row = y.first; row < y.end; ++row)
            for (int column = x.first; column < x.end; ++column)
                visit(std::array<int, 3>{column, row, slice});
}

/// The squared slope, from the neighbours: near enough to choose by.
class Steepness {
public:
    Steepness(const VolumeGrid& grid, std::span<const int16_t> volume)
        : grid_(grid), volume_(volume), strides_{1, size_t(grid.size[0]),
                                                 size_t(grid.size[0]) * size_t(grid.size[1])} {}

    [[nodiscard]] float at(const std::array<int, 3>& voxel) const {
        size_t index = 0;
        for (size_t axis = 0; axis < 3; ++axis)
            index += size_t(voxel[axis]) * strides_[axis];
        float sum = 0.0f;
        for (size_t axis = 0; axis < 3; ++axis) {
            if (voxel[axis] == 0 || voxel[axis] == grid_.size[axis] - 1)
                continue;
            const float slope = (sample(index + strides_[axis]) - sample(index - strides_[axis])) /
                                (2.0f * grid_.spacing[axis]);
            sum += slope * slope;
        }
        return sum;
    }

private:
    [[nodiscard]] float sample(size_t index) const { return float(uint16_t(volume_[index])); }

    VolumeGrid grid_;
    std::span<const int16_t> volume_;
    std::array<size_t, 3> strides_;
};

/// The steepness that about `count` voxels exceed, from every 13th of them.
float leastSteepness(const VolumeGrid& grid, const Steepness& steepness, size_t count) {
    constexpr size_t distance = 13;
    std::vector<float> some;
    some.reserve(grid.samples() / distance + 1);
    size_t voxels = 0;
    forVoxelsInside(grid, [&](const std::array<int, 3>& voxel) {
        if (voxels++ % distance == 0)
            some.push_back(steepness.at(voxel));
    });
    const size_t wanted = count / distance;
    if (wanted >= some.size())
        return 0.0f;
    const auto place = some.begin() + ptrdiff_t(wanted);
    std::ranges::nth_element(some, place, std::greater<>());
    return *place;
}

std::vector<std::array<int, 3>> steepestVoxels(const VolumeGrid& grid,
                                               std::span<const int16_t> volume) {
    const Steepness steepness(grid, volume);
    const float least = leastSteepness(grid, steepness, MotionSamples::maximumCount);
    std::vector<std::array<int, 3>> voxels;
    voxels.reserve(2 * MotionSamples::maximumCount);
    forVoxelsInside(grid, [&](const std::array<int, 3>& voxel) {
        const float found = steepness.at(voxel);
        if (found > least && voxels.size() < voxels.capacity())
            voxels.push_back(voxel);
    });
    return voxels;
}

/// Every fourth voxel first, then the others: a part is spread over the volume, and each is in the
/// order of the samples in memory.
std::vector<std::array<int, 3>> inParts(const std::vector<std::array<int, 3>>& voxels) {
    constexpr size_t unit = MotionSamples::parts * MotionSamples::lanes;
    const size_t count = voxels.size() / unit * unit;
    std::vector<std::array<int, 3>> ordered;
    ordered.reserve(count);
    for (size_t part = 0; part < MotionSamples::parts; ++part)
        for (size_t i = part; i < count; i += MotionSamples::parts)
            ordered.push_back(voxels[i]);
    return ordered;
}

void addSample(MotionSamples& samples, const SplineVolume& target,
               const std::array<int, 3>& voxel) {
    std::array<float, 3> p{}, g{};
    for (size_t axis = 0; axis < 3; ++axis) {
        p[axis] = samples.grid.position(axis, voxel[axis]);
        g[axis] = target.slope(axis, voxel) / samples.grid.spacing[axis];
        samples.positions[axis].push_back(p[axis]);
    }
    // A turn by w about the centre moves the point p by w x p.
    const std::array<float, nrOfMotionParameters> derivatives{g[0],
                                                              g[1],
                                                              g[2],
                                                              p[1] * g[2] - p[2] * g[1],
                                                              p[2] * g[0] - p[0] * g[2],
                                                              p[0] * g[1] - p[1] * g[0]};
    for (size_t k = 0; k < nrOfMotionParameters; ++k)
        samples.derivatives[k].push_back(derivatives[k]);
}

} // namespace

MotionSamples chooseMotionSamples(const SplineVolume& target, std::span<const int16_t> volume) {
    MotionSamples samples;
    samples.grid = target.grid();
    if (volume.size() != samples.grid.samples() || target.empty())
        return {};
    try {
        const std::vector<std::array<int, 3>> voxels =
            inParts(steepestVoxels(samples.grid, volume));
        for (auto& values : samples.positions)
            values.reserve(voxels.size());
        for (auto& values : samples.derivatives)
            values.reserve(voxels.size());
        for (const std::array<int, 3>& voxel : voxels) {
            addSample(samples, target, voxel);
            const size_t index =
                (size_t(voxel[2]) * size_t(samples.grid.size[1]) + size_t(voxel[1])) *
                    size_t(samples.grid.size[0]) +
                size_t(voxel[0]);
            samples.values.push_back(float(uint16_t(volume[index])));
        }
    } catch (const std::bad_alloc&) {
        return {};
    }
    return samples;
}
