// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/spline_volume.h"

#include "base/simd_clones.h"

#include <cmath>
#include <cstring>

namespace {

// The samples are the coefficients filtered with the spline's values at the voxels. The inverse is
// a causal and an anticausal recursion for each pole, and a gain.
struct Recursions {
    std::array<float, 2> poles;
    size_t nrOfPoles;
    float gain;
};
constexpr Recursions cubic{{-0.26794919243112270f, 0.0f}, 1, 6.0f}; // sqrt(3) - 2
constexpr Recursions quintic{{-0.43057534709997430f, -0.04309628820326465f}, 2, 120.0f};
constexpr float negligible = 1e-8f; // below the precision of float
constexpr int linesAtOnce = 16;     ///< along x, where neighbours stand side by side
constexpr size_t blockSize = 64;    ///< positions
constexpr size_t readBeyond = 2;    ///< coefficients behind the last one

/// One recursion there and back along `n` rows of `width` values that lie `stride` apart; each
/// value of a row belongs to a line of its own. `start` has room for a row.
VELO_SIMD_CLONES void filterLines(float* values, int n, size_t stride, size_t width, float pole,
                                  float gain, float* start) {
    const auto row = [=](int i) { return values + size_t(i) * stride; };
    // Mirrored at both ends, the line has the period 2 n - 2.
    const int period = 2 * n - 2;
    const int horizon = int(std::log(negligible) / std::log(-pole)) + 1;
    const int terms = std::min(horizon, period);
    std::memset(start, 0, width * sizeof(float));
    for (int k = terms - 1; k >= 0; --k) {
        const float* term = row(k < n ? k : period - k);
        for (size_t i = 0; i < width; ++i)
            start[i] = start[i] * pole + term[i];
    }
    const float ofPeriods = gain / (1.0f - (terms < horizon ? std::pow(pole, float(terms)) : 0.0f));
    for (size_t i = 0; i < width; ++i)
        row(0)[i] = start[i] * ofPeriods;
    for (int k = 1; k < n; ++k) {
        float* now = row(k);
        const float* last = row(k - 1);
        for (size_t i = 0; i < width; ++i)
            now[i] = now[i] * gain + last[i] * pole;
    }
    const float end = pole / (pole * pole - 1.0f);
    float* last = row(n - 1);
    const float* beforeLast = row(n - 2);
    for (size_t i = 0; i < width; ++i)
        last[i] = end * (last[i] + pole * beforeLast[i]);
    for (int k = n - 2; k >= 0; --k) {
        float* now = row(k);
        const float* next = row(k + 1);
        for (size_t i = 0; i < width; ++i)
            now[i] = pole * (next[i] - now[i]);
    }
}

/// Turns samples into coefficients.
void filterLines(float* values, int n, size_t stride, size_t width, SplineDegree degree,
                 float* start) {
    if (n < 2)
        return; // a constant is its own coefficient
    const Recursions& recursions = degree == SplineDegree::Cubic ? cubic : quintic;
    for (size_t i = 0; i < recursions.nrOfPoles; ++i)
        filterLines(values, n, stride, width, recursions.poles[i], i == 0 ? recursions.gain : 1.0f,
                    start);
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
        const float inside = std::min(std::max(positions[i], 0.0f), last);
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
        lines_.allocate(size_t(linesAtOnce) * extended(0) + sliceStride_))
        return true;
    coefficients_.release();
    return false;
}

void SplineVolume::setSamples(std::span<const int16_t> samples) {
    const auto [sizeX, sizeY, nrOfSlices] = grid_.size;
    const int16_t* from = samples.data();
    for (int z = 0; z < nrOfSlices; ++z)
        for (int y = 0; y < sizeY; ++y, from += sizeX) {
            float* to = &coefficients_[offset(0, y, z)];
            for (int x = 0; x < sizeX; ++x)
                to[x] = float(uint16_t(from[x]));
        }
    filter();
}

void SplineVolume::filter() {
    const auto [sizeX, sizeY, nrOfSlices] = grid_.size;
    float* start = lines_.data() + size_t(linesAtOnce) * rowStride_;
    for (int z = 0; z < nrOfSlices; ++z) {
        for (int y = 0; y < sizeY && !smoothed_[0]; y += linesAtOnce) {
            // Turned, so that the recursion along a row runs for many rows at once.
            const int count = std::min(linesAtOnce, sizeY - y);
            float* turned = lines_.data();
            for (int j = 0; j < count; ++j)
                for (int x = 0; x < sizeX; ++x)
                    turned[x * linesAtOnce + j] = coefficients_[offset(x, y + j, z)];
            filterLines(turned, sizeX, linesAtOnce, size_t(linesAtOnce), degree_, start);
            for (int j = 0; j < count; ++j)
                for (int x = 0; x < sizeX; ++x)
                    coefficients_[offset(x, y + j, z)] = turned[x * linesAtOnce + j];
        }
        if (!smoothed_[1])
            filterLines(&coefficients_[offset(0, 0, z)], sizeY, rowStride_, size_t(sizeX), degree_,
                        start);
    }
    // A slice from its first to its last voxel; what lies between the rows is set with the border.
    const size_t width = size_t(sizeY - 1) * rowStride_ + size_t(sizeX);
    if (!smoothed_[2])
        filterLines(&coefficients_[offset(0, 0, 0)], nrOfSlices, sliceStride_, width, degree_,
                    start);
    continueBeyondBorder();
}

void SplineVolume::continueBeyondBorder() {
    const auto mirrored = [](int index, int size) {
        const int period = std::max(2 * size - 2, 1);
        const int inPeriod = ((index % period) + period) % period;
        return std::min(inPeriod, period - inPeriod) % size;
    };
    // Sets `count` coefficients at `to`: those at `from`, or these reflected at those at `border`.
    const auto set = [this](bool reflected, size_t to, size_t from, size_t border, size_t count) {
        float* result = &coefficients_[to];
        const float* inside = &coefficients_[from];
        const float* last = &coefficients_[border];
        for (size_t i = 0; i < count; ++i)
            result[i] = reflected ? 2.0f * last[i] - inside[i] : inside[i];
    };
    const auto beside = [&](int size, const auto& setFrom) {
        for (int i = 1; i <= before_; ++i)
            setFrom(-i, mirrored(-i, size), 0);
        for (int i = 0; i < behind_; ++i)
            setFrom(size + i, mirrored(size + i, size), size - 1);
    };
    const auto [sizeX, sizeY, nrOfSlices] = grid_.size;
    for (int z = 0; z < nrOfSlices; ++z) {
        for (int y = 0; y < sizeY; ++y)
            beside(sizeX, [&](int to, int from, int border) {
                set(smoothed_[0], offset(to, y, z), offset(from, y, z), offset(border, y, z), 1);
            });
        beside(sizeY, [&](int to, int from, int border) {
            set(smoothed_[1], offset(-before_, to, z), offset(-before_, from, z),
                offset(-before_, border, z), rowStride_);
        });
    }
    beside(nrOfSlices, [&](int to, int from, int border) {
        set(smoothed_[2], offset(-before_, -before_, to), offset(-before_, -before_, from),
            offset(-before_, -before_, border), sliceStride_);
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
