// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/spline_volume.h"

#include "base/simd_clones.h"
#include "volume/spline_filter.h"

#include <cmath>
#include <cstring>

namespace {

constexpr int linesAtOnce = 16;  ///< along x, where neighbours stand side by side
constexpr size_t blockSize = 64; ///< positions
constexpr size_t readBeyond = 2; ///< coefficients behind the last one

/// Calls `set(to, from, border)` for the `before` places before and the `behind` places behind an
/// axis: `from` is `to` mirrored at the voxel `border`, the first or the last one.
template<typename Set> void forBorder(int size, int before, int behind, const Set& set) {
    const int period = std::max(2 * size - 2, 1);
    const auto mirrored = [&](int index) {
        const int inPeriod = ((index % period) + period) % period;
        return std::min(inPeriod, period - inPeriod) % size;
    };
    for (int i = 1; i <= before; ++i)
        set(-i, mirrored(-i), 0);
    for (int i = 0; i < behind; ++i)
        set(size + i, mirrored(size + i), size - 1);
}

/// Sets `count` coefficients beyond a border: those mirrored at it, or, where the volume goes on
/// with the same slope, these reflected at those of the border.
void continueBeyond(bool sameSlope, const float* mirrored, const float* border, size_t count,
                    float* result) {
    if (!sameSlope) {
        std::copy_n(mirrored, count, result);
        return;
    }
    for (size_t i = 0; i < count; ++i)
        result[i] = 2.0f * border[i] - mirrored[i];
}

/// Where the coefficients of a block of positions begin along an axis, and their weights.
template<size_t taps> struct AxisTaps {
    std::array<int32_t, blockSize> first;
    std::array<std::array<float, blockSize>, taps> weights;
};

/// The weights for a position that is `t` beyond a voxel.
[[gnu::always_inline]] inline void splineWeights(float t, std::array<float, 4>& w) {
    const float u = 1.0f - t;
    w[0] = u * u * u * (1.0f / 6.0f);
    w[1] = (2.0f / 3.0f) - t * t * (2.0f - t) * 0.5f;
    w[2] = (2.0f / 3.0f) - u * u * (2.0f - u) * 0.5f;
    w[3] = t * t * t * (1.0f / 6.0f);
}

[[gnu::always_inline]] inline void splineWeights(float t, std::array<float, 6>& w) {
    const float u = 1.0f - t, t2 = t * t, u2 = u * u;
    const auto middle = [](float x, float x2) {
        return 0.55f + x2 * (-0.5f + x2 * (0.25f - x * (1.0f / 12.0f)));
    };
    // Beside the middle, for a distance 1 + x: by the powers of x.
    const auto beside = [](float x, float x2) {
        return (26.0f / 120.0f) - x * (5.0f / 12.0f) + x2 * (1.0f / 6.0f) +
               x2 * x * ((1.0f / 6.0f) - x * (1.0f / 6.0f) + x2 * (1.0f / 24.0f));
    };
    w[0] = u2 * u2 * u * (1.0f / 120.0f);
    w[1] = beside(t, t2);
    w[2] = middle(t, t2);
    w[3] = middle(u, u2);
    w[4] = beside(u, u2);
    w[5] = t2 * t2 * t * (1.0f / 120.0f);
}

template<size_t taps>
[[gnu::always_inline]] inline void findTaps(const float* positions, size_t count, int size,
                                            AxisTaps<taps>& found) {
    const float last = float(size - 1);
    for (size_t i = 0; i < count; ++i) {
        // In this order NaN counts as 0: voxels of an absurd size have no position.
        const float inside = std::min(std::max(0.0f, positions[i]), last);
        const int32_t index = int32_t(inside);
        std::array<float, taps> weights;
        splineWeights(inside - float(index), weights);
        found.first[i] = index;
        for (size_t k = 0; k < taps; ++k)
            found.weights[k][i] = weights[k];
    }
}

using Four = float __attribute__((vector_size(16)));

inline Four fourAt(const float* values) {
    Four four;
    std::memcpy(&four, values, sizeof four);
    return four;
}

/// The coefficients around one position times their weights, from the first of them.
[[gnu::always_inline]] inline float weightedSum(const float* corner, size_t rowStride,
                                                size_t sliceStride, const std::array<float, 4>& x,
                                                const std::array<float, 4>& y,
                                                const std::array<float, 4>& z) {
    Four sum{};
    for (size_t k = 0; k < 4; ++k) {
        const float* row = corner + k * sliceStride;
        Four plane = fourAt(row) * y[0];
        for (size_t j = 1; j < 4; ++j)
            plane += fourAt(row + j * rowStride) * y[j];
        sum += plane * z[k];
    }
    return (sum[0] * x[0] + sum[1] * x[1]) + (sum[2] * x[2] + sum[3] * x[3]);
}

using Eight = float __attribute__((vector_size(32)));

/// Each row is read with two coefficients more, which get no weight.
[[gnu::always_inline]] inline float weightedSum(const float* corner, size_t rowStride,
                                                size_t sliceStride, const std::array<float, 6>& x,
                                                const std::array<float, 6>& y,
                                                const std::array<float, 6>& z) {
    Eight sum{};
    for (size_t k = 0; k < 6; ++k) {
        const float* row = corner + k * sliceStride;
        Eight plane{};
        for (size_t j = 0; j < 6; ++j) {
            Eight values;
            std::memcpy(&values, row + j * rowStride, sizeof values);
            plane += values * y[j];
        }
        sum += plane * z[k];
    }
    return ((sum[0] * x[0] + sum[1] * x[1]) + (sum[2] * x[2] + sum[3] * x[3])) +
           (sum[4] * x[4] + sum[5] * x[5]);
}

template<size_t taps>
[[gnu::always_inline]] inline void sampleBlock(const float* coefficients, size_t rowStride,
                                               size_t sliceStride, const std::array<int, 3>& size,
                                               const std::array<const float*, 3>& positions,
                                               size_t count, float* values) {
    AxisTaps<taps> x, y, z;
    findTaps(positions[0], count, size[0], x);
    findTaps(positions[1], count, size[1], y);
    findTaps(positions[2], count, size[2], z);
    for (size_t i = 0; i < count; ++i) {
        const auto weights = [i](const AxisTaps<taps>& of) {
            std::array<float, taps> w;
            for (size_t k = 0; k < taps; ++k)
                w[k] = of.weights[k][i];
            return w;
        };
        const float* corner = coefficients + size_t(z.first[i]) * sliceStride +
                              size_t(y.first[i]) * rowStride + size_t(x.first[i]);
        values[i] = weightedSum(corner, rowStride, sliceStride, weights(x), weights(y), weights(z));
    }
}

size_t floatsOfLines(const VolumeGrid& grid) {
    return size_t(linesAtOnce) * size_t(grid.size[0]);
}

} // namespace

bool SplineVolume::allocate(const VolumeGrid& grid, SplineDegree degree) {
    grid_ = grid;
    degree_ = degree;
    before_ = (int(degree) - 1) / 2;
    behind_ = (int(degree) + 1) / 2;
    const auto extended = [&](size_t axis) { return size_t(grid.size[axis] + before_ + behind_); };
    rowStride_ = extended(0);
    sliceStride_ = rowStride_ * extended(1);
    if (coefficients_.allocate(sliceStride_ * extended(2) + readBeyond) &&
        lines_.allocate(floatsOfLines(grid)))
        return true;
    coefficients_.release();
    return false;
}

bool SplineVolume::haveLinesFor(int nrOfThreads) {
    const size_t needed = floatsOfLines(grid_) * size_t(nrOfThreads);
    ZeroedBuffer<float> more;
    if (lines_.size() < needed && more.allocate(needed))
        lines_ = std::move(more);
    return lines_.size() >= needed;
}

void SplineVolume::setSamples(std::span<const int16_t> samples, WorkerPool& workers) {
    const auto [sizeX, sizeY, nrOfSlices] = grid_.size;
    const size_t sliceSamples = size_t(sizeX) * size_t(sizeY);
    WorkerPool& usable = haveLinesFor(workers.nrOfThreads()) ? workers : callersThread();
    usable.forParts(size_t(nrOfSlices), [&](size_t z, size_t thread) {
        filterSlice(int(z), samples.data() + z * sliceSamples,
                    lines_.data() + thread * floatsOfLines(grid_));
    });
    // Also beside the slices: what lies there is a sum of lines inside, and stays one.
    const size_t blocks = (sliceStride_ + mostSplineLines - 1) / mostSplineLines;
    usable.forParts(blocks, [&](size_t block) {
        const size_t first = block * mostSplineLines;
        filterAcrossSlices(first, std::min(mostSplineLines, sliceStride_ - first));
    });
}

/// Along x and y; then what lies beside the slice is set.
void SplineVolume::filterSlice(int z, const int16_t* samples, float* turned) {
    const auto [sizeX, sizeY, nrOfSlices] = grid_.size;
    for (int y = 0; y < sizeY; y += linesAtOnce) {
        // Turned, so that the recursion along a row runs for many rows at once.
        const int count = std::min(linesAtOnce, sizeY - y);
        for (int j = 0; j < count; ++j) {
            const int16_t* row = samples + size_t(y + j) * size_t(sizeX);
            for (int x = 0; x < sizeX; ++x)
                turned[x * linesAtOnce + j] = float(uint16_t(row[x]));
        }
        if (!smoothed_[0])
            filterSplineLines(turned, sizeX, linesAtOnce, size_t(linesAtOnce), degree_);
        for (int j = 0; j < count; ++j) {
            float* row = &coefficients_[offset(0, y + j, z)];
            for (int x = 0; x < sizeX; ++x)
                row[x] = turned[x * linesAtOnce + j];
        }
    }
    for (size_t x = 0; x < size_t(sizeX) && !smoothed_[1]; x += mostSplineLines)
        filterSplineLines(&coefficients_[offset(int(x), 0, z)], sizeY, rowStride_,
                          std::min(mostSplineLines, size_t(sizeX) - x), degree_);
    continueBesideSlice(z);
}

void SplineVolume::continueBesideSlice(int z) {
    const auto [sizeX, sizeY, nrOfSlices] = grid_.size;
    const auto at = [&](int x, int y) { return &coefficients_[offset(x, y, z)]; };
    for (int y = 0; y < sizeY; ++y)
        forBorder(sizeX, before_, behind_, [&](int to, int from, int border) {
            continueBeyond(smoothed_[0], at(from, y), at(border, y), 1, at(to, y));
        });
    forBorder(sizeY, before_, behind_, [&](int to, int from, int border) {
        continueBeyond(smoothed_[1], at(-before_, from), at(-before_, border), rowStride_,
                       at(-before_, to));
    });
}

/// Along z, for neighbours from `first` on in the extended slices; then what is beyond the slices.
void SplineVolume::filterAcrossSlices(size_t first, size_t width) {
    const int nrOfSlices = grid_.size[2];
    const auto row = [&](int z) {
        return &coefficients_[size_t(z + before_) * sliceStride_ + first];
    };
    if (!smoothed_[2])
        filterSplineLines(row(0), nrOfSlices, sliceStride_, width, degree_);
    forBorder(nrOfSlices, before_, behind_, [&](int to, int from, int border) {
        continueBeyond(smoothed_[2], row(from), row(border), width, row(to));
    });
}

VELO_SIMD_CLONES void SplineVolume::sample(const Positions& positions, size_t count,
                                           float* values) const {
    for (size_t begin = 0; begin < count; begin += blockSize) {
        const size_t n = std::min(blockSize, count - begin);
        const std::array<const float*, 3> at{positions.x + begin, positions.y + begin,
                                             positions.z + begin};
        if (degree_ == SplineDegree::Cubic)
            sampleBlock<4>(coefficients_.data(), rowStride_, sliceStride_, grid_.size, at, n,
                           values + begin);
        else
            sampleBlock<6>(coefficients_.data(), rowStride_, sliceStride_, grid_.size, at, n,
                           values + begin);
    }
}

float SplineVolume::slope(size_t axis, const std::array<int, 3>& voxel) const {
    // The spline and its derivative at the voxels around.
    constexpr std::array<float, 3> cubicValues{4.0f / 6.0f, 1.0f / 6.0f, 0.0f};
    constexpr std::array<float, 3> quinticValues{66.0f / 120.0f, 26.0f / 120.0f, 1.0f / 120.0f};
    constexpr std::array<float, 3> cubicSlopes{0.0f, 0.5f, 0.0f};
    constexpr std::array<float, 3> quinticSlopes{0.0f, 5.0f / 12.0f, 1.0f / 24.0f};
    const bool isCubic = degree_ == SplineDegree::Cubic;
    const auto& values = isCubic ? cubicValues : quinticValues;
    const auto& slopes = isCubic ? cubicSlopes : quinticSlopes;
    const std::array<ptrdiff_t, 3> strides{1, ptrdiff_t(rowStride_), ptrdiff_t(sliceStride_)};
    const float* centre = &coefficients_[offset(voxel[0], voxel[1], voxel[2])];
    const ptrdiff_t along = strides[axis], u = strides[(axis + 1) % 3], v = strides[(axis + 2) % 3];
    float sum = 0.0f;
    for (int j = -before_; j <= before_; ++j)
        for (int k = -before_; k <= before_; ++k) {
            const float* line = centre + j * u + k * v;
            float difference = 0.0f;
            for (int i = 1; i <= before_; ++i)
                difference += slopes[size_t(i)] * (line[i * along] - line[-i * along]);
            sum += values[size_t(std::abs(j))] * values[size_t(std::abs(k))] * difference;
        }
    return sum;
}
