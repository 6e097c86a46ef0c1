// Motion correction and smoothing give the same bits on any number of threads.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/head_volume.h"
#include "volume/motion_correction.h"
#include "volume/smoothing.h"
#include "volume/spline_resampling.h"
#include "volume_runs.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

using Samples = std::vector<int16_t>;

VolumeGrid gridOf(const std::array<int, 3>& size) {
    VolumeGrid grid;
    grid.size = size;
    grid.spacing = {3.0f, 3.0f, 4.0f};
    return grid;
}

const RigidTransformation motion{0.7f, -1.1f, 0.4f, 2.0f, -1.5f, 3.0f};

Samples headOf(const VolumeGrid& grid, const RigidTransformation& t, unsigned seed) {
    Samples samples(grid.samples());
    HeadVolume(grid).fill(t, 20.0, seed, samples);
    return samples;
}

template<typename Numbers> std::vector<double> asDoubles(const Numbers& numbers) {
    return {numbers.begin(), numbers.end()};
}

void append(std::vector<double>& numbers, const RigidTransformation& t) {
    numbers.insert(numbers.end(), {t.tx, t.ty, t.tz, t.rx, t.ry, t.rz});
}

/// What a kernel makes of a head that moved from `target` to `source`. The objects stay for all
/// numbers of threads.
class Kernels {
public:
    explicit Kernels(const VolumeGrid& grid)
        : grid_(grid), target_(headOf(grid, {}, 1)), source_(headOf(grid, motion, 2)) {
        EXPECT_TRUE(evaluator_.setTarget(grid, target_) && fitting_.setTarget(grid, target_) &&
                    cubic_.allocate(grid, SplineDegree::Cubic) &&
                    quintic_.allocate(grid, SplineDegree::Quintic));
    }

    std::vector<double> evaluation(WorkerPool& workers) {
        MotionEquations equations;
        evaluator_.evaluate(source_, motion, equations, workers);
        std::vector<double> numbers = asDoubles(equations.curvature);
        std::ranges::copy(equations.gradient, std::back_inserter(numbers));
        numbers.insert(numbers.end(), {equations.sumOfSquares, double(equations.voxelsUsed)});
        return numbers;
    }
    std::vector<double> trilinear(WorkerPool& workers) {
        Samples moved(grid_.samples());
        resampleVolume(grid_, source_, moved, motion, workers);
        return asDoubles(moved);
    }
    std::vector<double> cubicSpline(WorkerPool& workers) {
        Samples moved(grid_.samples());
        cubic_.setSamples(source_, workers);
        resampleVolume(cubic_, moved, motion, workers);
        return asDoubles(moved);
    }
    std::vector<double> quinticSlopes(WorkerPool& workers) {
        quintic_.setSamples(source_, workers);
        std::vector<double> slopes;
        for (int z = 0; z < grid_.size[2]; ++z)
            for (int y = 0; y < grid_.size[1]; ++y)
                for (int x = 0; x < grid_.size[0]; ++x)
                    for (size_t axis = 0; axis < 3; ++axis)
                        slopes.push_back(double(quintic_.slope(axis, {x, y, z})));
        return slopes;
    }
    std::vector<double> fit(WorkerPool& workers) {
        const auto found = fitting_.fit(source_, {}, workers);
        if (!found)
            return {};
        std::vector<double> numbers{double(found->steps), found->residual};
        append(numbers, found->transformation);
        return numbers;
    }
    std::vector<double> smoothed(WorkerPool& workers) {
        FMRProject run = runOf(grid_.size[0], grid_.size[1], grid_.size[2], 1,
                               [](int, int, int, int) { return 0; });
        std::ranges::copy(source_, run.volumes[0].begin());
        EXPECT_TRUE(smoothing_.smoothVolume(run, 0, VoxelWidths{2.5, 4.1, 3.0}, workers));
        return asDoubles(run.volumes[0]);
    }

private:
    VolumeGrid grid_;
    Samples target_;
    Samples source_;
    MotionEvaluator evaluator_;
    LeastSquaresMotion fitting_;
    SplineVolume cubic_;
    SplineVolume quintic_;
    SpatialSmoothing smoothing_;
};

} // namespace

TEST(SeveralThreads, GiveTheBitsOfOne) {
    const std::pair<const char*, std::vector<double> (Kernels::*)(WorkerPool&)> kernels[] = {
        {"evaluation", &Kernels::evaluation},    {"trilinear", &Kernels::trilinear},
        {"cubic spline", &Kernels::cubicSpline}, {"quintic spline", &Kernels::quinticSlopes},
        {"least squares fit", &Kernels::fit},    {"smoothing", &Kernels::smoothed}};
    const std::array<int, 3> sizes[] = {{41, 37, 23}, {37, 21, 1}, {19, 40, 2}, {1, 30, 9},
                                        {9, 1, 5},    {301, 3, 4}, {1, 1, 1}};
    for (const std::array<int, 3>& size : sizes) {
        Kernels of(gridOf(size));
        for (const auto& [name, kernel] : kernels) {
            WorkerPool one(1);
            const std::vector<double> expected = (of.*kernel)(one);
            for (const int threads : {2, 3, 5}) {
                WorkerPool workers(threads);
                EXPECT_TRUE((of.*kernel)(workers) == expected)
                    << name << " of " << size[0] << " columns on " << threads;
            }
        }
        EXPECT_TRUE(size[0] != 41 || !of.fit(callersThread()).empty());
    }
}

TEST(SeveralThreads, CorrectARunAsOneDoes) {
    const VolumeGrid grid = gridOf({33, 35, 13});
    const QTemporaryDir folder;
    const auto correct = [&](MotionMethod method, int threads) {
        WorkerPool workers(threads);
        FMRProject run = runOf(grid.size[0], grid.size[1], grid.size[2], 3,
                               [](int, int, int, int) { return 0; });
        for (unsigned v = 0; v < 3; ++v)
            std::ranges::copy(headOf(grid, {0.3f * float(v), 0.0f, 0.2f, 0.0f, float(v), 0.0f}, v),
                              run.volumes[v].begin());
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
