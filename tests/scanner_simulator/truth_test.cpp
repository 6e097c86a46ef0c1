// SPDX-License-Identifier: GPL-3.0-or-later
#include "scanner_simulator/simulated_scan.h"

#include <gtest/gtest.h>

namespace {

constexpr int nrOfPredictors = 4; // faces, houses, constant, trend
using Row = std::array<double, nrOfPredictors>;
using Square = std::array<Row, nrOfPredictors>;

/// Box-car of a condition convolved numerically in steps of 0.1 s with the difference of two gamma
/// densities, sampled in the middle of each volume.
double predictor(const SimulatedCondition& condition, int volume, double secondsPerVolume) {
    constexpr double step = 0.1;
    const double now = (volume + 0.5) * secondsPerVolume;
    double sum = 0.0;
    for (double lag = step; lag < 40.0; lag += step) {
        const int then = int(std::floor((now - lag) / secondsPerVolume)) + 1;
        const double response = std::exp(5 * std::log(lag) - lag - std::lgamma(6.0)) -
                                std::exp(15 * std::log(lag) - lag - std::lgamma(16.0)) / 6.0;
        for (const ProtocolInterval& interval : condition.intervals)
            if (then >= interval.from && then <= interval.to)
                sum += response * step;
    }
    return sum;
}

Square inverse(Square matrix) {
    Square result{};
    for (size_t i = 0; i < nrOfPredictors; ++i)
        result[i][i] = 1.0;
    for (size_t pivot = 0; pivot < nrOfPredictors; ++pivot) {
        const double scale = matrix[pivot][pivot]; // positive definite: never 0
        for (size_t column = 0; column < nrOfPredictors; ++column) {
            matrix[pivot][column] /= scale;
            result[pivot][column] /= scale;
        }
        for (size_t row = 0; row < nrOfPredictors; ++row) {
            const double factor = row == pivot ? 0.0 : matrix[row][pivot];
            for (size_t column = 0; column < nrOfPredictors; ++column) {
                matrix[row][column] -= factor * matrix[pivot][column];
                result[row][column] -= factor * result[pivot][column];
            }
        }
    }
    return result;
}

/// Ordinary least squares of every voxel by the normal equations; t of faces and of houses.
struct Fit {
    std::vector<Row> design;
    Square covariance{};
    std::vector<Row> xy;
    std::vector<double> yy;

    explicit Fit(const SimulatedScan& scan) {
        const SimulationOptions& options = scan.options();
        const int analysed = options.nrOfVolumes - options.nrOfVolumesToSkip;
        Square xx{};
        xy.resize(scan.geometry().voxels());
        yy.resize(scan.geometry().voxels());
        for (int volume = 0; volume < analysed; ++volume) {
            const double seconds = options.repetitionTime / 1000.0;
            const Row row = {predictor(scan.conditions()[1], volume, seconds),
                             predictor(scan.conditions()[2], volume, seconds), 1.0,
                             2.0 * volume / analysed - 1.0};
            for (size_t i = 0; i < nrOfPredictors; ++i)
                for (size_t j = 0; j < nrOfPredictors; ++j)
                    xx[i][j] += row[i] * row[j];
            const std::vector<uint16_t> samples = scan.volume(volume + options.nrOfVolumesToSkip);
            for (size_t voxel = 0; voxel < samples.size(); ++voxel) {
                for (size_t i = 0; i < nrOfPredictors; ++i)
                    xy[voxel][i] += row[i] * samples[voxel];
                yy[voxel] += double(samples[voxel]) * samples[voxel];
            }
            design.push_back(row);
        }
        covariance = inverse(xx);
    }

    [[nodiscard]] double t(size_t voxel, size_t condition) const {
        Row beta{};
        double explained = 0.0;
        for (size_t i = 0; i < nrOfPredictors; ++i) {
            for (size_t j = 0; j < nrOfPredictors; ++j)
                beta[i] += covariance[i][j] * xy[voxel][j];
            explained += beta[i] * xy[voxel][i];
        }
        const double variance = (yy[voxel] - explained) / double(design.size() - nrOfPredictors);
        return beta[condition] / std::sqrt(variance * covariance[condition][condition]);
    }
};

struct Counts {
    size_t voxels = 0;
    size_t above = 0;
    [[nodiscard]] double share() const { return double(above) / double(voxels); }
};

void expectTruthIsFound(const SimulationOptions& options) {
    const SimulatedScan scan(options);
    const Fit fit(scan);
    const std::vector<uint8_t> brain = scan.brainVoxels();
    for (int condition = 1; condition <= 2; ++condition) {
        const std::vector<uint8_t> active = scan.activeVoxels(condition);
        Counts inside;
        Counts outside;
        for (size_t voxel = 0; voxel < active.size(); ++voxel) {
            if (brain[voxel] == 0)
                continue;
            Counts& counts = active[voxel] != 0 ? inside : outside;
            ++counts.voxels;
            counts.above += fit.t(voxel, size_t(condition - 1)) > 3.0 ? 1 : 0;
        }
        EXPECT_GE(inside.voxels, 60u);
        EXPECT_GE(inside.share(), 0.95);
        EXPECT_LE(outside.share(), 0.01);
        printf("in %zu %.4f\n", inside.voxels, inside.share());
        printf("out %zu %.4f\n", outside.voxels, outside.share());
    }
}

} // namespace

TEST(SimulatedTruth, IsFoundByLeastSquares) {
    for (const int repetitionTime : {1000, 2000})
        for (const uint64_t seed : {uint64_t(1), uint64_t(77)}) {
            SimulationOptions options;
            options.repetitionTime = repetitionTime;
            options.seed = seed;
            expectTruthIsFound(options);
        }
}
