// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/trial_fit.h"

#include "base/simd_clones.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

// Blocks of voxels: their sums stay in the first-level cache.
constexpr size_t blockVoxels = 256;
constexpr int constantColumn = 1;
constexpr double smallestDeviation = 0.01;
constexpr double smallestError = 1e-06;
constexpr double smallestConstant = 1e-09; // as a share of the beta; below it is mere rounding

/// What all voxels share.
struct Setup {
    TrialEstimate estimate = TrialEstimate::TValue;
    bool normalizes = false;
    size_t n = 0;
    size_t p = 0;
    const double* solution = nullptr; ///< p x n
    /// The betas of a window of ones: 0 for all but the constant, unless X lacks directions.
    double betasOfOnes[maximumPredictors] = {};
    std::vector<double> centred; ///< p x n: the columns without their means
    double varianceFactor = 0.0; ///< (X'X)^-1[0][0] / (n - p); 0 unless n is above p
};

/// What rounding left of a 0 or a 1. A voxel that is the same in all points then has a beta of
/// exactly 0.
double withoutRounding(double value) {
    constexpr double rounding = 1e-9;
    const double nearest = value < 0.5 ? 0.0 : 1.0;
    return std::fabs(value - nearest) < rounding ? nearest : value;
}

Setup setupOf(const TrialFit& fit) {
    const TrialDesign& design = fit.design;
    Setup setup;
    setup.estimate = fit.estimate;
    setup.normalizes =
        fit.zNormalization && fit.estimate != TrialEstimate::PercentBeta && design.nrOfPoints > 2;
    const size_t n = setup.n = size_t(design.nrOfPoints);
    const size_t p = setup.p = size_t(design.nrOfPredictors);
    setup.solution = design.solution.data();
    setup.centred.resize(p * n);
    for (size_t k = 0; k < p; ++k) {
        double sum = 0.0;
        double mean = 0.0;
        for (size_t i = 0; i < n; ++i) {
            sum += design.solution[k * n + i];
            mean += design.X[i * p + k] / double(n);
        }
        setup.betasOfOnes[k] = withoutRounding(sum);
        for (size_t i = 0; i < n; ++i)
            setup.centred[k * n + i] = design.X[i * p + k] - mean;
    }
    if (n > p)
        setup.varianceFactor = design.inverse[0] / double(n - p);
    return setup;
}

/// A block of voxels on its way to the values. Samples are relative to the voxel's first one, so
/// that sums of squares lose nothing to a large mean; sums of these whole numbers are exact.
struct Block {
    size_t count = 0;
    std::vector<float> samples; ///< n x blockVoxels
    alignas(64) double firstSamples[blockVoxels];
    alignas(64) double sums[blockVoxels];
    alignas(64) double squares[blockVoxels];
    alignas(64) double residuals[blockVoxels]; ///< sums of squares
    alignas(64) double betas[maximumPredictors][blockVoxels];
};

VELO_SIMD_CLONES
void addSums(const Setup& setup, Block& block) {
    std::fill_n(block.sums, block.count, 0.0);
    std::fill_n(block.squares, block.count, 0.0);
    for (size_t k = 0; k < setup.p; ++k)
        std::fill_n(block.betas[k], block.count, 0.0);
    for (size_t i = 0; i < setup.n; ++i) {
        const float* samples = block.samples.data() + i * blockVoxels;
        for (size_t v = 0; v < block.count; ++v) {
            const double sample = double(samples[v]);
            block.sums[v] += sample;
            block.squares[v] += sample * sample;
        }
        for (size_t k = 0; k < setup.p; ++k) {
            const double weight = setup.solution[k * setup.n + i];
            double* betas = block.betas[k];
            for (size_t v = 0; v < block.count; ++v)
                betas[v] += weight * double(samples[v]);
        }
    }
}

/// SSy - SSf as the sum of squared residuals: the difference would be mere rounding where the fit
/// is perfect.
VELO_SIMD_CLONES
void addResiduals(const Setup& setup, Block& block) {
    alignas(64) double residuals[blockVoxels];
    std::fill_n(block.residuals, block.count, 0.0);
    const double n = double(setup.n);
    for (size_t i = 0; i < setup.n; ++i) {
        const float* samples = block.samples.data() + i * blockVoxels;
        for (size_t v = 0; v < block.count; ++v)
            residuals[v] = double(samples[v]) - block.sums[v] / n;
        for (size_t k = 0; k < setup.p; ++k) {
            if (k == constantColumn)
                continue;
            const double regressor = setup.centred[k * setup.n + i];
            const double* betas = block.betas[k];
            for (size_t v = 0; v < block.count; ++v)
                residuals[v] -= regressor * betas[v];
        }
        for (size_t v = 0; v < block.count; ++v)
            block.residuals[v] += residuals[v] * residuals[v];
    }
}

/// The betas of y itself, or of y after z normalization, from those of the relative samples.
VELO_SIMD_CLONES
void restoreBetas(const Setup& setup, Block& block) {
    const double n = double(setup.n);
    for (size_t v = 0; v < block.count; ++v) {
        double offset = block.firstSamples[v];
        double deviation = 1.0;
        if (setup.normalizes) {
            const double sum = block.sums[v];
            deviation = std::sqrt(std::max(n * block.squares[v] - sum * sum, 0.0)) / n;
            deviation = deviation < smallestDeviation ? 1.0 : deviation;
            offset = -sum / n;
        }
        for (size_t k = 0; k < setup.p; ++k)
            block.betas[k][v] = (block.betas[k][v] + offset * setup.betasOfOnes[k]) / deviation;
        block.residuals[v] /= deviation * deviation;
    }
}

[[gnu::always_inline]] inline float finiteOrZero(float value) {
    return std::fabs(value) <= std::numeric_limits<float>::max() ? value : 0.0f;
}

VELO_SIMD_CLONES
void computeValues(const Setup& setup, const Block& block, float* __restrict values) {
    for (size_t v = 0; v < block.count; ++v) {
        const double beta = block.betas[0][v];
        double value = beta;
        if (setup.estimate == TrialEstimate::TValue) {
            const double error = std::sqrt(block.residuals[v] * setup.varianceFactor);
            value = error >= smallestError ? beta / error : 0.0;
        } else if (setup.estimate == TrialEstimate::PercentBeta && beta > 0.0) {
            const double constant = block.betas[constantColumn][v];
            value = std::fabs(constant) >= smallestConstant * beta ? beta / constant * 100.0 : 0.0;
        }
        values[v] = finiteOrZero(float(value));
    }
}

/// Fits block after block. `gather(first, block)` fills in the samples of the block's voxels, from
/// number `first` on; `store(first, values)` takes their values.
template<typename Gather, typename Store>
void fitBlocks(const TrialFit& fit, size_t nrOfVoxels, const Gather& gather, const Store& store) {
    if (fit.design.nrOfPoints < 1)
        return;
    const Setup setup = setupOf(fit);
    Block block;
    block.samples.resize(setup.n * blockVoxels);
    float values[blockVoxels];
    for (size_t first = 0; first < nrOfVoxels; first += blockVoxels) {
        block.count = std::min(blockVoxels, nrOfVoxels - first);
        gather(first, block);
        addSums(setup, block);
        if (setup.estimate == TrialEstimate::TValue)
            addResiduals(setup, block);
        restoreBetas(setup, block);
        computeValues(setup, block, values);
        store(first, std::span<const float>(values, block.count));
    }
}

void gatherConsecutive(const RunVolumes& volumes, std::span<const int> window, size_t firstPlace,
                       Block& block) {
    const int16_t* origin = volumes[size_t(window[0])].data() + firstPlace;
    for (size_t v = 0; v < block.count; ++v)
        block.firstSamples[v] = origin[v];
    for (size_t i = 0; i < window.size(); ++i) {
        const int16_t* samples = volumes[size_t(window[i])].data() + firstPlace;
        float* out = block.samples.data() + i * blockVoxels;
        for (size_t v = 0; v < block.count; ++v)
            out[v] = float(int(samples[v]) - int(origin[v]));
    }
}

void gatherPlaces(const RunVolumes& volumes, std::span<const int> window, const size_t* places,
                  Block& block) {
    const int16_t* origin = volumes[size_t(window[0])].data();
    for (size_t v = 0; v < block.count; ++v)
        block.firstSamples[v] = origin[places[v]];
    for (size_t i = 0; i < window.size(); ++i) {
        const int16_t* samples = volumes[size_t(window[i])].data();
        float* out = block.samples.data() + i * blockVoxels;
        for (size_t v = 0; v < block.count; ++v)
            out[v] = float(int(samples[places[v]]) - int(origin[places[v]]));
    }
}

} // namespace

bool TrialFit::skipsNormalization() const {
    return zNormalization && estimate != TrialEstimate::PercentBeta && design.nrOfPoints < 3;
}

void estimateVoxels(const TrialFit& fit, const RunVolumes& volumes, std::span<const int> window,
                    std::span<const size_t> places, std::span<float> values) {
    fitBlocks(
        fit, values.size(),
        [&](size_t first, Block& block) {
            gatherPlaces(volumes, window, places.data() + first, block);
        },
        [&](size_t first, std::span<const float> estimates) {
            std::ranges::copy(estimates, values.begin() + std::ptrdiff_t(first));
        });
}

void estimateConsecutiveVoxels(const TrialFit& fit, const RunVolumes& volumes,
                               std::span<const int> window, size_t firstPlace, int intensityLimit,
                               std::span<float> values) {
    fitBlocks(
        fit, values.size(),
        [&](size_t first, Block& block) {
            gatherConsecutive(volumes, window, firstPlace + first, block);
        },
        [&](size_t first, std::span<const float> estimates) {
            const int16_t* firstVolume = volumes[0].data() + firstPlace + first;
            for (size_t v = 0; v < estimates.size(); ++v)
                if (firstVolume[v] >= intensityLimit)
                    values[first + v] = estimates[v];
        });
}
