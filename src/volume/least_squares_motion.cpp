// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/least_squares_motion.h"

#include "base/simd_clones.h"
#include "stats/numerics/linear_systems.h"
#include "volume/motion_detail.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numbers>

namespace {

constexpr size_t blockSize = 256;
/// Samples whose sums a thread computes at a time.
constexpr size_t samplesOfPart = 8 * blockSize;
constexpr float outside = -1e30f; ///< stands for the value of a sample outside the volume
constexpr size_t leastSamples = 64;
constexpr double leastShare = 0.25; ///< of the samples inside the volume

/// Residuals beyond so many standard deviations pull no more than these: 95 % efficient where they
/// are normal.
constexpr double huberBound = 1.345;
constexpr double deviationsPerMedian = 1.4826; ///< of the magnitudes of normal residuals
/// Samples are whole numbers, so that a smaller deviation is none of theirs.
constexpr double smallestDeviation = 0.5;

constexpr int maximumSteps = 40;
/// Millimetres that a step moves the surface of a head at most. Below the first, a part of the
/// samples can tell no more; below the second the motion is found.
constexpr double roughPrecision = 0.1;
constexpr double precision = 0.01;
/// Larger steps are no improvement of a guess.
constexpr double largestShift = 30.0; ///< millimetres
constexpr double largestTurn = 0.5;   ///< radians

using Lanes = float __attribute__((vector_size(MotionSamples::lanes * sizeof(float))));

void load(const float* values, Lanes& lanes) {
    std::memcpy(&lanes, values, sizeof lanes);
}

struct BlockOfVoxels {
    std::array<std::array<float, blockSize>, 3> positions; ///< in voxels of the volume
    std::array<float, blockSize> inside;                   ///< 1, or 0
};

[[gnu::always_inline]] inline void moveBlock(const MotionSamples& samples, size_t begin, size_t n,
                                             const C3dMatrix& motion, BlockOfVoxels& block) {
    constexpr float tolerance = 1e-3f; // voxels: the outermost ones are inside
    const float* x = samples.positions[0].data() + begin;
    const float* y = samples.positions[1].data() + begin;
    const float* z = samples.positions[2].data() + begin;
    block.inside.fill(1.0f);
    for (size_t axis = 0; axis < 3; ++axis) {
        const float byX = motion.at(axis, 0), byY = motion.at(axis, 1), byZ = motion.at(axis, 2);
        const float shift = motion.at(axis, 3);
        const float perMillimetre = 1.0f / samples.grid.spacing[axis];
        const float half = samples.grid.half(axis);
        const float last = 2.0f * half + tolerance;
        float* voxels = block.positions[axis].data();
        for (size_t i = 0; i < n; ++i) {
            voxels[i] = (byX * x[i] + byY * y[i] + byZ * z[i] + shift) * perMillimetre + half;
            const bool within = voxels[i] >= -tolerance && voxels[i] <= last;
            block.inside[i] = within ? block.inside[i] : 0.0f;
        }
    }
}

C3dMatrix inverseOfSmallMotion(const std::array<double, nrOfMotionParameters>& motion) {
    constexpr double degrees = 180.0 / std::numbers::pi;
    const auto turn = [&](size_t k) { return float(-motion[k] * degrees); };
    // The turns are small, so that their order makes no difference that the next step doesn't see.
    return C3dMatrix::rotationX(turn(3)) * C3dMatrix::rotationY(turn(4)) *
           C3dMatrix::rotationZ(turn(5)) *
           C3dMatrix::translation(float(-motion[0]), float(-motion[1]), float(-motion[2]));
}

/// Of normal residuals, from the median of their magnitudes, which are reordered.
double standardDeviation(std::vector<float>& magnitudes) {
    if (magnitudes.empty())
        return smallestDeviation;
    const auto median = magnitudes.begin() + ptrdiff_t(magnitudes.size() / 2);
    std::nth_element(magnitudes.begin(), median, magnitudes.end());
    return std::max(deviationsPerMedian * double(*median), smallestDeviation);
}

using Scales = std::array<float, MotionSamples::nrOfClasses>;

Scales allOf(float value) {
    Scales scales;
    scales.fill(value);
    return scales;
}

double length(double x, double y, double z) {
    return std::sqrt(x * x + y * y + z * z);
}

} // namespace

struct LeastSquaresMotion::State {
    C3dMatrix motion; ///< millimetres of the target to those of the volume
    double brightness = 1.0;
    double scale = 1e9; ///< standard deviation of the residuals
    /// The same for each class of roughness; at first as good as unlimited.
    Scales scales = allOf(1e9f);
    double moved = 0.0; ///< millimetres, by the last step
};

bool LeastSquaresMotion::setTarget(const VolumeGrid& grid, std::span<const int16_t> target) {
    samples_ = {};
    if (target.size() != grid.samples() || !source_.allocate(grid, SplineDegree::Quintic))
        return false;
    source_.smoothAlong(axesTooSharp(grid, target));
    source_.setSamples(target);
    samples_ = chooseMotionSamples(source_, target);
    moved_.assign(samples_.count(), outside);
    partSums_.resize((samples_.count() + samplesOfPart - 1) / samplesOfPart);
    return true;
}

VELO_SIMD_CLONES void LeastSquaresMotion::accumulate(const State& state, size_t first, size_t end,
                                                     Sums& sums) {
    constexpr size_t lanes = MotionSamples::lanes;
    BlockOfVoxels block;
    const float brightness = float(state.brightness), scale = float(state.scale);
    std::array<float, blockSize> scales;
    for (size_t begin = first; begin < end; begin += blockSize) {
        const size_t n = std::min(blockSize, end - begin);
        moveBlock(samples_, begin, n, state.motion, block);
        source_.sample(
            {block.positions[0].data(), block.positions[1].data(), block.positions[2].data()}, n,
            &moved_[begin]);
        for (size_t i = 0; i < n; ++i)
            scales[i] = state.scales[samples_.roughness[begin + i]];
        Lanes products[nrOfProducts] = {};
        for (size_t i = 0; i < n; i += lanes) {
            Lanes d[nrOfUnknowns], residual, weight, deviation;
            for (size_t k = 0; k < nrOfMotionParameters; ++k)
                load(&samples_.derivatives[k][begin + i], d[k]);
            load(&samples_.values[begin + i], d[nrOfMotionParameters]);
            load(&moved_[begin + i], residual);
            load(&block.inside[i], weight);
            load(&scales[i], deviation);
            residual -= brightness * d[nrOfMotionParameters];
            const Lanes magnitude = residual < 0.0f ? -residual : residual;
            const Lanes bound = float(huberBound) * deviation, relative = scale / deviation;
            weight *= relative * relative;
            weight *= magnitude > bound ? bound / magnitude : Lanes{} + 1.0f;
            size_t p = 0;
            for (size_t k = 0; k < nrOfUnknowns; ++k) {
                const Lanes weighted = weight * d[k];
                for (size_t j = 0; j <= k; ++j)
                    products[p++] += weighted * d[j];
                products[p++] += weighted * residual;
            }
        }
        for (size_t p = 0; p < nrOfProducts; ++p)
            for (size_t j = 0; j < lanes; ++j)
                sums.products[p] += double(products[p][j]);
        for (size_t i = 0; i < n; ++i) {
            if (block.inside[i] > 0.0f)
                ++sums.used;
            else
                moved_[begin + i] = outside;
        }
    }
}

void LeastSquaresMotion::measureResiduals(State& state, size_t count, WorkerPool& workers) {
    constexpr size_t distance = 5;
    constexpr size_t fewest = 32;
    constexpr size_t ofAll = MotionSamples::nrOfClasses; // the set of all samples
    constexpr size_t nrOfSets = ofAll + 1;
    for (std::vector<float>& residuals : residuals_)
        residuals.clear();
    std::vector<float>& all = residuals_[ofAll];
    for (size_t i = 0; i < count; i += distance)
        if (moved_[i] > outside) {
            all.push_back(std::abs(moved_[i] - float(state.brightness) * samples_.values[i]));
            residuals_[samples_.roughness[i]].push_back(all.back());
        }
    std::array<double, nrOfSets> deviations{};
    workers.forParts(nrOfSets, [&](size_t part) {
        const size_t k = nrOfSets - 1 - part; // the largest set first
        if (k == ofAll || residuals_[k].size() >= fewest)
            deviations[k] = standardDeviation(residuals_[k]);
    });
    state.scale = deviations[ofAll];
    for (size_t k = 0; k < state.scales.size(); ++k)
        state.scales[k] = float(deviations[k] > 0.0 ? deviations[k] : state.scale);
}

void LeastSquaresMotion::Sums::add(const Sums& part) {
    for (size_t p = 0; p < nrOfProducts; ++p)
        products[p] += part.products[p];
    used += part.used;
}

bool LeastSquaresMotion::step(State& state, size_t count, WorkerPool& workers) {
    // The limits of the parts and the order of their sums don't depend on the threads.
    const size_t nrOfParts = (count + samplesOfPart - 1) / samplesOfPart;
    workers.forParts(nrOfParts, [&](size_t part) {
        const size_t first = part * samplesOfPart;
        partSums_[part] = {};
        accumulate(state, first, std::min(first + samplesOfPart, count), partSums_[part]);
    });
    Sums sums;
    for (size_t part = 0; part < nrOfParts; ++part)
        sums.add(partSums_[part]);
    if (sums.used < leastSamples || double(sums.used) < leastShare * double(count))
        return false;
    std::array<double, nrOfUnknowns * nrOfUnknowns> equations{};
    std::array<double, nrOfUnknowns> change{};
    size_t p = 0;
    for (size_t k = 0; k < nrOfUnknowns; ++k) {
        for (size_t j = 0; j <= k; ++j)
            equations[k * nrOfUnknowns + j] = equations[j * nrOfUnknowns + k] = sums.products[p++];
        change[k] = sums.products[p++];
    }
    if (numerics::eliminateGaussJordan(equations, int(nrOfUnknowns), change, 1) !=
        numerics::Elimination::Done)
        return false;
    state.brightness += change[nrOfMotionParameters];
    // A volume of another brightness altogether is not one of the run.
    constexpr double darkest = 0.2, brightest = 5.0;
    if (!(state.brightness > darkest && state.brightness < brightest))
        return false;
    std::array<double, nrOfMotionParameters> motion{};
    for (size_t k = 0; k < nrOfMotionParameters; ++k)
        motion[k] = change[k] / state.brightness;
    const double shift = length(motion[0], motion[1], motion[2]);
    const double turn = length(motion[3], motion[4], motion[5]);
    if (!(shift < largestShift && turn < largestTurn))
        return false;
    state.motion = state.motion * inverseOfSmallMotion(motion);
    state.moved = shift + turn * headSurfaceRadius;
    measureResiduals(state, count, workers);
    return true;
}

std::optional<LeastSquaresMotion::Result> LeastSquaresMotion::fit(std::span<const int16_t> volume,
                                                                  const RigidTransformation& start,
                                                                  WorkerPool& workers) {
    if (samples_.count() < leastSamples || volume.size() != samples_.grid.samples())
        return std::nullopt;
    source_.setSamples(volume, workers);
    State state;
    state.motion = start.matrix();
    bool rough = true;
    for (int steps = 1; steps <= maximumSteps; ++steps) {
        if (!step(state, rough ? samples_.count() / MotionSamples::parts : samples_.count(),
                  workers))
            return std::nullopt;
        if (!rough && state.moved < precision)
            return Result{rigidTransformation(state.motion), steps, state.scale};
        rough = rough && state.moved >= roughPrecision;
    }
    return std::nullopt;
}

RigidTransformation rigidTransformation(const C3dMatrix& m) {
    // Rx Ry Rz has the sine of the turn about y in its upper right corner.
    const auto degrees = [](double radians) { return float(radians * 180.0 / std::numbers::pi); };
    const auto element = [&m](size_t row, size_t column) { return double(m.at(row, column)); };
    RigidTransformation t;
    t.tx = -m.at(0, 3);
    t.ty = -m.at(1, 3);
    t.tz = -m.at(2, 3);
    t.rx = degrees(std::atan2(-element(1, 2), element(2, 2)));
    t.ry = degrees(std::asin(std::clamp(element(0, 2), -1.0, 1.0)));
    t.rz = degrees(std::atan2(-element(0, 1), element(0, 0)));
    return t;
}
