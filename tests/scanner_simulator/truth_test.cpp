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
            ASSERT_LE(active[voxel], brain[voxel]) << voxel;
            if (brain[voxel] == 0)
                continue;
            Counts& counts = active[voxel] != 0 ? inside : outside;
            ++counts.voxels;
            counts.above += fit.t(voxel, size_t(condition - 1)) > 3.0 ? 1 : 0;
        }
        EXPECT_GE(inside.voxels, 60u);
        EXPECT_GE(inside.share(), 0.95);
        EXPECT_LE(outside.share(), 0.01);
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

TEST(SimulatedTruth, LiesInBothHemispheresAndNotInTheOutermostSlices) {
    for (const int nrOfSlices : {8, 25, 72}) {
        SimulationOptions options;
        options.nrOfSlices = nrOfSlices;
        const SimulatedScan scan(options);
        const size_t slice = scan.geometry().sliceVoxels();
        for (int condition = 1; condition <= 2; ++condition) {
            const std::vector<uint8_t> active = scan.activeVoxels(condition);
            std::array<int, 2> bySide{};
            for (size_t voxel = 0; voxel < active.size(); ++voxel)
                if (active[voxel] != 0) {
                    ++bySide[voxel % 64 / 32];
                    EXPECT_GE(voxel, slice);
                    EXPECT_LT(voxel, active.size() - slice);
                }
            EXPECT_GT(bySide[0], 20);
            EXPECT_EQ(bySide[0], bySide[1]);
        }
    }
}

TEST(SimulatedVolume, DependsOnOptionsAlone) {
    SimulationOptions options;
    options.nrOfVolumes = 6;
    const SimulatedScan scan(options);
    const std::vector<uint16_t> fourth = scan.volume(3);
    EXPECT_NE(scan.volume(2), fourth);
    EXPECT_EQ(SimulatedScan(options).volume(3), fourth);
    options.seed = 2;
    EXPECT_NE(SimulatedScan(options).volume(3), fourth);
    options.seed = 1;
    options.run = 2;
    EXPECT_NE(SimulatedScan(options).volume(3), fourth);
}

TEST(SimulatedVolume, AMaskThresholdOfOneHundredSeparatesHeadFromAir) {
    SimulationOptions options;
    const SimulatedScan scan(options);
    const std::vector<uint8_t> brain = scan.brainVoxels();
    const std::vector<uint16_t> samples = scan.volume(20);
    for (size_t voxel = 0; voxel < samples.size(); ++voxel)
        if (brain[voxel] != 0) {
            EXPECT_GT(samples[voxel], 600) << voxel;
            EXPECT_LT(samples[voxel], 1250) << voxel;
        }
    for (size_t slice = 0; slice < 25; ++slice) // the corners are air
        for (const size_t corner : {0, 63, 63 * 64, 63 * 64 + 63})
            EXPECT_LT(samples[slice * 64 * 64 + corner], 60);
}

TEST(SimulatedMotion, MovesTheHeadAsItSays) {
    SimulationOptions options;
    options.motion = HeadMotion::Jumps;
    options.noise = 0.0;
    options.fieldOfView = 64; // pixels of 1 mm, so that the first jump is one pixel along x
    options.amplitude = 0.0;
    const SimulatedScan scan(options);
    const int jump = 2 + 38; // a quarter of 150 volumes after the skipped ones
    EXPECT_TRUE(scan.pose(jump - 1).isAtRest());
    EXPECT_DOUBLE_EQ(scan.pose(jump).translation[0], 1.0);
    const std::vector<uint16_t> before = scan.volume(jump - 1);
    const std::vector<uint16_t> after = scan.volume(jump);
    for (size_t x = 1; x < 64; ++x) { // drift and pulsation change it by less than a percent
        const size_t voxel = (12 * 64 + 32) * 64 + x;
        EXPECT_NEAR(after[voxel], before[voxel - 1], 0.012 * before[voxel - 1]) << x;
    }
}

TEST(SimulatedMotion, TurnsCounterClockwiseAboutX_Y_Z) {
    // A quarter turn about each axis in this order takes x to -z, y to y, z to x.
    HeadPose pose;
    pose.rotation[0] = pose.rotation[1] = pose.rotation[2] = 90.0;
    pose.translation[1] = 5.0;
    const PoseInverse toHead(pose);
    const Point point = toHead({3.0, 2.0 + 5.0, -1.0}); // where the head's (1, 2, 3) is seen
    EXPECT_NEAR(point.x, 1.0, 1e-12);
    EXPECT_NEAR(point.y, 2.0, 1e-12);
    EXPECT_NEAR(point.z, 3.0, 1e-12);
}
