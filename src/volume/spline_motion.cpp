// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/spline_motion.h"

#include "base/simd_clones.h"
#include "stats/numerics/linear_systems.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numbers>

namespace {

constexpr size_t blockSize = 256;
constexpr float notInside = -1e30f;
/// Residuals beyond so many standard deviations pull with constant force (95 % efficiency).
constexpr double huberBound = 1.345;
constexpr double deviationsPerMedian = 1.4826; // of normal residuals
constexpr double headRadius = 70.0; // millimetres

using Lanes = float __attribute__((vector_size(32)));
constexpr size_t lanes = 8;
constexpr size_t nrOfProducts = 7 * 8 / 2 + 7 + 1;

} // namespace

struct SplineMotionLevel::Sums {
    std::array<double, nrOfProducts> products{};
    size_t used = 0;
};

bool SplineMotionLevel::setTarget(const SplineVolume& target, size_t maximumSamples) {
    grid_ = target.grid();
    const auto [sizeX, sizeY, nrOfSlices] = grid_.size;
    const auto from = [](int size) { return size > 2 ? 1 : 0; };
    struct Candidate {
        float strength;
        uint32_t index;
        float slopes[3];
    };
    std::vector<Candidate> candidates;
    candidates.reserve(grid_.samples());
    for (int z = from(nrOfSlices); z < nrOfSlices - from(nrOfSlices); ++z)
        for (int y = from(sizeY); y < sizeY - from(sizeY); ++y)
            for (int x = from(sizeX); x < sizeX - from(sizeX); ++x) {
                Candidate c{};
                for (size_t axis = 0; axis < 3; ++axis) {
                    c.slopes[axis] = target.slope(axis, {x, y, z}) / grid_.spacing[axis];
                    c.strength += c.slopes[axis] * c.slopes[axis];
                }
                c.index = uint32_t((size_t(z) * size_t(sizeY) + size_t(y)) * size_t(sizeX) + size_t(x));
                candidates.push_back(c);
            }
    count_ = std::min(maximumSamples, candidates.size()) / (4 * lanes) * (4 * lanes);
    std::nth_element(candidates.begin(), candidates.begin() + ptrdiff_t(count_), candidates.end(),
                     [](const Candidate& a, const Candidate& b) { return a.strength > b.strength; });
    candidates.resize(count_);
    // In the order of the volume, so that the source is read from front to back; the first part,
    // which stands for all of them in the first steps, is every fourth.
    std::ranges::sort(candidates, {}, &Candidate::index);
    std::vector<Candidate> ordered;
    ordered.reserve(count_);
    for (size_t part = 0; part < 4; ++part)
        for (size_t i = part; i < count_; i += 4)
            ordered.push_back(candidates[i]);
    candidates = std::move(ordered);
    for (auto* set : {&positions_[0], &positions_[1], &positions_[2], &moved_, &scratch_})
        set->resize(count_);
    for (auto& values : derivatives_)
        values.resize(count_);
    for (size_t i = 0; i < count_; ++i) {
        const Candidate& c = candidates[i];
        const int x = int(c.index % uint32_t(sizeX));
        const int y = int(c.index / uint32_t(sizeX) % uint32_t(sizeY));
        const int z = int(c.index / uint32_t(sizeX) / uint32_t(sizeY));
        const float p[3] = {grid_.position(0, x), grid_.position(1, y), grid_.position(2, z)};
        for (size_t axis = 0; axis < 3; ++axis) {
            positions_[axis][i] = p[axis];
            derivatives_[axis][i] = c.slopes[axis];
        }
        const float* g = c.slopes;
        derivatives_[3][i] = p[1] * g[2] - p[2] * g[1];
        derivatives_[4][i] = p[2] * g[0] - p[0] * g[2];
        derivatives_[5][i] = p[0] * g[1] - p[1] * g[0];
        const float fx = float(x), fy = float(y), fz = float(z);
        target.sample({&fx, &fy, &fz}, 1, &derivatives_[6][i]);
    }
    return true;
}

VELO_SIMD_CLONES static void toVoxels(const std::array<std::vector<float>, 3>& positions, size_t begin, size_t n,
                                      const C3dMatrix& m, const VolumeGrid& grid,
                                      std::array<std::array<float, blockSize>, 3>& voxels,
                                      std::array<float, blockSize>& inside) {
    const float* px = positions[0].data() + begin;
    const float* py = positions[1].data() + begin;
    const float* pz = positions[2].data() + begin;
    for (size_t i = 0; i < n; ++i)
        inside[i] = 1.0f;
    for (size_t axis = 0; axis < 3; ++axis) {
        const float a = m.at(axis, 0), b = m.at(axis, 1), c = m.at(axis, 2), d = m.at(axis, 3);
        const float perMillimetre = 1.0f / grid.spacing[axis], half = grid.half(axis);
        const float last = float(grid.size[axis] - 1) + 1e-3f;
        float* to = voxels[axis].data();
        for (size_t i = 0; i < n; ++i) {
            const float v = (a * px[i] + b * py[i] + c * pz[i] + d) * perMillimetre + half;
            to[i] = v;
            inside[i] = v >= -1e-3f && v <= last ? inside[i] : 0.0f;
        }
    }
}

VELO_SIMD_CLONES void SplineMotionLevel::accumulate(const SplineVolume& source,
                                                    const C3dMatrix& motion, double brightness,
                                                    double scale, size_t count, Sums& sums) {
    std::array<std::array<float, blockSize>, 3> voxels;
    std::array<float, blockSize> inside;
    const float bright = float(brightness), bound = float(huberBound * scale);
    for (size_t begin = 0; begin < count; begin += blockSize) {
        const size_t n = std::min(blockSize, count - begin);
        toVoxels(positions_, begin, n, motion, grid_, voxels, inside);
        source.sample({voxels[0].data(), voxels[1].data(), voxels[2].data()}, n, &moved_[begin]);
        Lanes block[nrOfProducts] = {};
        for (size_t i = 0; i < n; i += lanes) {
            Lanes d[7], value, in;
            for (size_t k = 0; k < 7; ++k)
                std::memcpy(&d[k], &derivatives_[k][begin + i], sizeof(Lanes));
            std::memcpy(&value, &moved_[begin + i], sizeof(Lanes));
            std::memcpy(&in, &inside[i], sizeof(Lanes));
            const Lanes residual = value - bright * d[6];
            const Lanes magnitude = residual < 0.0f ? -residual : residual;
            const Lanes weight = in * (magnitude > bound ? bound / magnitude : Lanes{} + 1.0f);
            size_t p = 0;
            for (size_t k = 0; k < 7; ++k) {
                const Lanes weighted = weight * d[k];
                for (size_t j = 0; j <= k; ++j)
                    block[p++] += weighted * d[j];
                block[p++] += weighted * residual;
            }
            block[p] += weight * residual * residual;
            for (size_t j = 0; j < lanes; ++j) {
                sums.used += in[j] > 0.0f;
                if (!(in[j] > 0.0f))
                    moved_[begin + i + j] = notInside;
            }
        }
        for (size_t p = 0; p < nrOfProducts; ++p)
            for (size_t j = 0; j < lanes; ++j)
                sums.products[p] += double(block[p][j]);
    }
}

double SplineMotionLevel::residualScale(double brightness, size_t count) {
    size_t n = 0;
    for (size_t i = 0; i < count; i += 7)
        if (moved_[i] > notInside)
            scratch_[n++] = std::abs(moved_[i] - float(brightness) * derivatives_[6][i]);
    if (n == 0)
        return 0.0;
    std::nth_element(scratch_.begin(), scratch_.begin() + ptrdiff_t(n / 2), scratch_.begin() + ptrdiff_t(n));
    return deviationsPerMedian * double(scratch_[n / 2]);
}

std::optional<SplineMotionFit> SplineMotionLevel::fit(const SplineVolume& source, C3dMatrix& motion,
                                                      const Limits& limits) {
    SplineMotionFit result;
    double brightness = 1.0, scale = 1e9;
    bool rough = true;
    for (int step = 0; step < limits.steps; ++step) {
        Sums sums;
        const size_t count = rough ? count_ / 4 : count_;
        accumulate(source, motion, brightness, scale, count, sums);
        if (sums.used < count / 4 || sums.used < 64)
            return std::nullopt;
        std::array<double, 49> h{};
        std::array<double, 7> change{};
        size_t p = 0;
        for (size_t k = 0; k < 7; ++k) {
            for (size_t j = 0; j <= k; ++j)
                h[k * 7 + j] = h[j * 7 + k] = sums.products[p++];
            change[k] = sums.products[p++];
        }
        result.meanSquare = sums.products[p] / double(sums.used);
        result.samplesUsed = sums.used;
        ++result.steps;
        if (numerics::eliminateGaussJordan(h, 7, change, 1) != numerics::Elimination::Done)
            return std::nullopt;
        const double nextBrightness = brightness + change[6];
        if (!(nextBrightness > 0.1) || !(nextBrightness < 10.0))
            return std::nullopt;
        double u[6];
        for (size_t k = 0; k < 6; ++k)
            u[k] = change[k] / nextBrightness;
        brightness = nextBrightness;
        constexpr double degrees = 180.0 / std::numbers::pi;
        const double angle = std::sqrt(u[3] * u[3] + u[4] * u[4] + u[5] * u[5]);
        const double shift = std::sqrt(u[0] * u[0] + u[1] * u[1] + u[2] * u[2]);
        if (!(angle < 0.5) || !(shift < 30.0))
            return std::nullopt;
        // exp(-change): small, so that the order of its rotations is of no account.
        motion = motion * C3dMatrix::rotationX(float(-u[3] * degrees)) *
                 C3dMatrix::rotationY(float(-u[4] * degrees)) *
                 C3dMatrix::rotationZ(float(-u[5] * degrees)) *
                 C3dMatrix::translation(float(-u[0]), float(-u[1]), float(-u[2]));
        scale = residualScale(brightness, count);
        const double moved = shift + angle * headRadius;
        if (!rough && moved < limits.precision)
            break;
        if (moved < limits.roughPrecision)
            rough = false;
    }
    result.transformation = rigidTransformation(motion);
    return result;
}

RigidTransformation rigidTransformation(const C3dMatrix& m) {
    // Rx Ry Rz has sin(ry) at (0, 2).
    const auto degrees = [](double radians) { return float(radians * 180.0 / std::numbers::pi); };
    RigidTransformation t;
    t.tx = -m.at(0, 3);
    t.ty = -m.at(1, 3);
    t.tz = -m.at(2, 3);
    t.ry = degrees(std::asin(std::clamp(double(m.at(0, 2)), -1.0, 1.0)));
    t.rx = degrees(std::atan2(-double(m.at(1, 2)), double(m.at(2, 2))));
    t.rz = degrees(std::atan2(-double(m.at(0, 1)), double(m.at(0, 0))));
    return t;
}
