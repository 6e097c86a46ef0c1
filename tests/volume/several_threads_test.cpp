// Motion correction and smoothing give the same bits on any number of threads.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/head_volume.h"
#include "volume/motion_correction.h"
#include "volume/smoothing.h"
#include "volume/spline_resampling.h"
#include "volume_runs.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <map>

namespace {

const RigidTransformation motion{0.7f, -1.1f, 0.4f, 2.0f, -1.5f, 3.0f};

/// What the kernels make of a head that moved. The objects stay for all numbers of threads.
class Kernels {
public:
    explicit Kernels(const VolumeGrid& grid)
        : grid_(grid), target_(grid.samples()), source_(grid.samples()) {
        const HeadVolume head(grid);
        head.fill({}, 20.0, 1, target_);
        head.fill(motion, 20.0, 2, source_);
        EXPECT_TRUE(evaluator_.setTarget(grid, target_) && fitting_.setTarget(grid, target_) &&
                    cubic_.allocate(grid, SplineDegree::Cubic) &&
                    quintic_.allocate(grid, SplineDegree::Quintic));
    }

    std::map<std::string, std::vector<double>> results(WorkerPool& workers) {
        std::map<std::string, std::vector<double>> results;
        const auto add = [&results](const char* kernel, const auto& numbers) {
            results[kernel].insert(results[kernel].end(), numbers.begin(), numbers.end());
        };
        MotionEquations equations;
        evaluator_.evaluate(source_, motion, equations, workers);
        add("evaluation", equations.curvature);
        add("evaluation", equations.gradient);
        add("evaluation", std::array{equations.sumOfSquares, double(equations.voxelsUsed)});

        std::vector<int16_t> moved(grid_.samples());
        resampleVolume(grid_, source_, moved, motion, workers);
        add("trilinear", moved);
        cubic_.setSamples(source_, workers);
        resampleVolume(cubic_, moved, motion, workers);
        add("cubic spline", moved);

        quintic_.setSamples(source_, workers);
        for (int z = 0; z < grid_.size[2]; ++z)
            for (int y = 0; y < grid_.size[1]; ++y)
                for (int x = 0; x < grid_.size[0]; ++x)
                    for (size_t axis = 0; axis < 3; ++axis)
                        results["quintic spline"].push_back(
                            double(quintic_.slope(axis, {x, y, z})));

        if (const auto fit = fitting_.fit(source_, {}, workers)) {
            const RigidTransformation& t = fit->transformation;
            add("least squares fit", std::array{t.tx, t.ty, t.tz, t.rx, t.ry, t.rz});
            add("least squares fit", std::array{double(fit->steps), fit->residual});
        }
        FMRProject run = runOf(grid_.size[0], grid_.size[1], grid_.size[2], 1);
        std::ranges::copy(source_, run.volumes[0].begin());
        EXPECT_TRUE(smoothing_.smoothVolume(run, 0, VoxelWidths{2.5, 4.1, 3.0}, workers));
        add("smoothing", run.volumes[0]);
        return results;
    }

private:
    VolumeGrid grid_;
    std::vector<int16_t> target_;
    std::vector<int16_t> source_;
    MotionEvaluator evaluator_;
    LeastSquaresMotion fitting_;
    SplineVolume cubic_;
    SplineVolume quintic_;
    SpatialSmoothing smoothing_;
};

TEST(SeveralThreads, GiveTheBitsOfOne) {
    const std::array<int, 3> sizes[] = {{41, 37, 23}, {37, 21, 1}, {19, 40, 2}, {1, 30, 9},
                                        {9, 1, 5},    {301, 3, 4}, {1, 1, 1}};
    for (const std::array<int, 3>& size : sizes) {
        Kernels kernels(gridOf(size, {3.0f, 3.0f, 4.0f}));
        WorkerPool one(1);
        const auto expected = kernels.results(one);
        EXPECT_EQ(expected.contains("least squares fit"), size[0] == 41);
        for (const int threads : {2, 3, 5}) {
            WorkerPool workers(threads);
            auto actual = kernels.results(workers);
            EXPECT_EQ(actual.size(), expected.size());
            for (const auto& [name, numbers] : expected)
                EXPECT_TRUE(actual[name] == numbers)
                    << name << " of " << size[0] << " columns on " << threads;
        }
    }
}

TEST(SeveralThreads, CorrectARunAsOneDoes) {
    const VolumeGrid grid = gridOf({33, 35, 13}, {3.0f, 3.0f, 4.0f});
    const HeadVolume head(grid);
    const QTemporaryDir folder;
    const auto correct = [&](MotionMethod method, int threads) {
        WorkerPool workers(threads);
        FMRProject run = runOf(grid.size[0], grid.size[1], grid.size[2], 3);
        for (unsigned v = 0; v < 3; ++v)
            head.fill({0.3f * float(v), 0.0f, 0.2f, 0.0f, float(v), 0.0f}, 20.0, v, run.volumes[v]);
        run.targetFolder = folder.path() + "/";
        MotionCorrection correction;
        correction.method = method;
        EXPECT_TRUE(correction.motionTarget.allocate(grid.samples()));
        correction.setMotionTarget(run);
        bool failed = false;
        std::vector<double> numbers;
        for (int v = 1; v < 3; ++v) {
            correction.correctVolumeMotion(run, v, failed, workers);
            for (const auto& values : correction.motionParameters)
                numbers.push_back(double(values[size_t(v)]));
            std::ranges::copy(run.volumes[size_t(v)], std::back_inserter(numbers));
        }
        EXPECT_FALSE(failed);
        return numbers;
    };
    for (const MotionMethod method :
         {MotionMethod::Standard, MotionMethod::LeastSquares, MotionMethod::LeastSquaresTrilinear})
        EXPECT_TRUE(correct(method, 3) == correct(method, 1)) << int(method);
}

} // namespace
