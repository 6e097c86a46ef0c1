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

/// The volume around a voxel, by differences of neighbours.
class Surroundings {
public:
    Surroundings(const VolumeGrid& grid, std::span<const int16_t> volume)
        : grid_(grid), volume_(volume), strides_{1, size_t(grid.size[0]),
                                                 size_t(grid.size[0]) * size_t(grid.size[1])} {}

    /// The squared slope: near enough to choose by.
    [[nodiscard]] float steepness(const std::array<int, 3>& voxel) const {
        return sumOfSquares(voxel, [this](size_t index, size_t axis) {
            return (sample(index + strides_[axis]) - sample(index - strides_[axis])) /
                   (2.0f * grid_.spacing[axis]);
        });
    }
    /// The squared second differences: what a voxel differs from its neighbours by.
    [[nodiscard]] float roughness(const std::array<int, 3>& voxel) const {
        return sumOfSquares(voxel, [this](size_t index, size_t axis) {
            return sample(index + strides_[axis]) + sample(index - strides_[axis]) -
                   2.0f * sample(index);
        });
    }

private:
    /// Over the axes along which the voxel has two neighbours.
    template<typename Difference>
    [[nodiscard]] float sumOfSquares(const std::array<int, 3>& voxel,
                                     const Difference& difference) const {
        size_t index = 0;
        for (size_t axis = 0; axis < 3; ++axis)
            index += size_t(voxel[axis]) * strides_[axis];
        float sum = 0.0f;
        for (size_t axis = 0; axis < 3; ++axis) {
            if (voxel[axis] == 0 || voxel[axis] == grid_.size[axis] - 1)
                continue;
            const float found = difference(index, axis);
            sum += found * found;
        }
        return sum;
    }
    [[nodiscard]] float sample(size_t index) const { return float(uint16_t(volume_[index])); }

    VolumeGrid grid_;
    std::span<const int16_t> volume_;
    std::array<size_t, 3> strides_;
};

/// The steepness that about `count` voxels exceed, from every 13th of them, in other columns and
/// rows of each slice whatever its size.
float leastSteepness(const VolumeGrid& grid, const Surroundings& around, size_t count) {
    constexpr size_t distance = 13;
    std::vector<float> some;
    some.reserve(grid.samples() / distance + 1);
    forVoxelsInside(grid, [&](const std::array<int, 3>& voxel) {
        const auto [x, y, z] = voxel;
        if ((size_t(x) + 5 * size_t(y) + 3 * size_t(z)) % distance == 0)
            some.push_back(around.steepness(voxel));
    });
    const size_t wanted = count / distance;
    if (wanted >= some.size())
        return 0.0f;
    const auto place = some.begin() + ptrdiff_t(wanted);
    std::ranges::nth_element(some, place, std::greater<>());
    return *place;
}

std::vector<std::array<int, 3>> steepestVoxels(const VolumeGrid& grid, const Surroundings& around) {
    const float least = leastSteepness(grid, around, MotionSamples::maximumCount);
    std::vector<std::array<int, 3>> voxels;
    voxels.reserve(2 * MotionSamples::maximumCount);
    forVoxelsInside(grid, [&](const std::array<int, 3>& voxel) {
        const float found = around.steepness(voxel);
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

void addValues(MotionSamples& samples, const SplineVolume& target,
               const std::vector<std::array<int, 3>>& voxels) {
    std::array<std::vector<float>, 3> positions;
    for (size_t axis = 0; axis < 3; ++axis)
        for (const std::array<int, 3>& voxel : voxels)
            positions[axis].push_back(float(voxel[axis]));
    samples.values.resize(voxels.size());
    target.sample({positions[0].data(), positions[1].data(), positions[2].data()}, voxels.size(),
                  samples.values.data());
}

void addRoughness(MotionSamples& samples, const Surroundings& around,
                  const std::vector<std::array<int, 3>>& voxels) {
    constexpr size_t classes = MotionSamples::nrOfClasses;
    std::vector<float> found;
    for (const std::array<int, 3>& voxel : voxels)
        found.push_back(around.roughness(voxel));
    std::vector<float> sorted = found;
    std::ranges::sort(sorted);
    std::array<float, classes - 1> limits{};
    for (size_t i = 0; i < limits.size() && !sorted.empty(); ++i)
        limits[i] = sorted[(i + 1) * sorted.size() / classes];
    for (const float roughness : found)
        samples.roughness.push_back(
            uint8_t(std::ranges::upper_bound(limits, roughness) - limits.begin()));
}

} // namespace

MotionSamples chooseMotionSamples(const SplineVolume& target, std::span<const int16_t> volume) {
    MotionSamples samples;
    samples.grid = target.grid();
    if (volume.size() != samples.grid.samples() || target.empty())
        return {};
    try {
        const Surroundings around(samples.grid, volume);
        const std::vector<std::array<int, 3>> voxels =
            inParts(steepestVoxels(samples.grid, around));
        for (auto& values : samples.positions)
            values.reserve(voxels.size());
        for (auto& values : samples.derivatives)
            values.reserve(voxels.size());
        for (const std::array<int, 3>& voxel : voxels)
            addSample(samples, target, voxel);
        addValues(samples, target, voxels);
        addRoughness(samples, around, voxels);
    } catch (const std::bad_alloc&) {
        return {};
    }
    return samples;
}
