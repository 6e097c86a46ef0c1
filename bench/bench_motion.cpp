// Time of motion correction for one volume at five sizes, on one thread and on two, compared with
// its plain form and with a copy of the volume.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "clock_time.h"
#include "volume/head_volume.h"
#include "volume/least_squares_motion.h"
#include "volume/motion_evaluation.h"
#include "volume/plain_motion.h"
#include "volume/spline_resampling.h"

#include <cstdio>

namespace {

struct Size {
    std::array<int, 3> voxels;
    std::array<float, 3> millimetres;
    double budgetMilliseconds; ///< 0: none, and the plain form takes too long
    int nrOfVolumes;
};

constexpr double noise = 10.0; // sample units, in a head of 900
constexpr int repeats = 11;

double median(std::vector<double> values) {
    std::ranges::nth_element(values, values.begin() + ptrdiff_t(values.size() / 2));
    return values[values.size() / 2];
}

class StandardCorrection {
public:
    [[nodiscard]] bool prepare(const VolumeGrid& grid, std::span<const int16_t> target) {
        grid_ = grid;
        return evaluator_.setTarget(grid, target);
    }
    MotionFit fit(std::span<const int16_t> source, const MotionParameters& start,
                  WorkerPool& workers) {
        bool failed = false;
        return fitMotion(
            [&](const RigidTransformation& t, MotionEquations& equations) {
                evaluator_.evaluate(source, t, equations, workers);
            },
            start, failed);
    }
    void resample(std::span<const int16_t> source, const RigidTransformation& t,
                  std::span<int16_t> result, WorkerPool& workers) const {
        resampleVolume(grid_, source, result, t, workers);
    }

private:
    VolumeGrid grid_;
    MotionEvaluator evaluator_;
};

class LeastSquaresCorrection {
public:
    [[nodiscard]] bool prepare(const VolumeGrid& grid, std::span<const int16_t> target) {
        return fitting_.setTarget(grid, target) && spline_.allocate(grid, SplineDegree::Cubic);
    }
    MotionFit fit(std::span<const int16_t> source, const MotionParameters& start,
                  WorkerPool& workers) {
        const auto found = fitting_.fit(source, transformationOf(start), workers);
        return found ? MotionFit{found->transformation, found->steps} : MotionFit{};
    }
    void resample(std::span<const int16_t> source, const RigidTransformation& t,
                  std::span<int16_t> result, WorkerPool& workers) {
        spline_.setSamples(source, workers);
        resampleVolume(spline_, result, t, workers);
    }

private:
    LeastSquaresMotion fitting_;
    SplineVolume spline_;
};

/// Milliseconds for each volume: the best of the repeats.
struct Times {
    std::vector<double> fit;
    std::vector<double> resampling;
};

double together(const Times& times) {
    return median(times.fit) + median(times.resampling);
}

/// One method of correction: its times on one thread and on two.
template<typename Correction> class Measurement {
public:
    [[nodiscard]] bool prepare(const VolumeGrid& grid, std::span<const int16_t> target) {
        result_.resize(grid.samples());
        return correction_.prepare(grid, target);
    }
    void take(std::span<const int16_t> source, const MotionParameters& start,
              const std::array<WorkerPool*, 2>& pools) {
        std::array<double, 2> fit{1e9, 1e9}, resampling{1e9, 1e9};
        MotionFit found;
        // In turn, so that a busy moment of the machine hits both.
        for (int i = 0; i < repeats; ++i)
            for (size_t p = 0; p < pools.size(); ++p) {
                fit[p] = std::min(
                    fit[p], clockTime([&] { found = correction_.fit(source, start, *pools[p]); }));
                resampling[p] = std::min(resampling[p], clockTime([&] {
                                             correction_.resample(source, found.transformation,
                                                                  result_, *pools[p]);
                                         }));
            }
        steps_.push_back(found.steps);
        for (size_t p = 0; p < pools.size(); ++p) {
            times_[p].fit.push_back(fit[p]);
            times_[p].resampling.push_back(resampling[p]);
        }
    }
    void print(const char* name) const {
        const double one = together(times_[0]), two = together(times_[1]);
        std::printf("  %-13s  %5.0f  %7.2f  %8.2f  %7.2f  %7.2f  %8.2f  %7.2f  %5.2f  %5.2f  %5.2f",
                    name, median(steps_), median(times_[0].fit), median(times_[0].resampling), one,
                    median(times_[1].fit), median(times_[1].resampling), two, one / two,
                    median(times_[0].fit) / median(times_[1].fit),
                    median(times_[0].resampling) / median(times_[1].resampling));
    }
    [[nodiscard]] double onOneThread() const { return together(times_[0]); }

private:
    Correction correction_;
    std::vector<int16_t> result_;
    std::vector<double> steps_;
    std::array<Times, 2> times_; ///< on one thread and on two
};

double plainTime(const VolumeGrid& grid, std::span<const int16_t> target,
                 std::span<const int16_t> source, const MotionParameters& start) {
    PlainMotion plain(grid, target, source);
    return clockTime([&] {
        bool failed = false;
        const MotionFit fit =
            fitMotion([&](const RigidTransformation& t,
                          MotionEquations& equations) { plain.evaluate(t, equations); },
                      start, failed);
        (void)plain.resample(fit.transformation);
    });
}

/// Volumes of a drifting head, each fitted from 0.9 times the position of the previous one.
void measure(const Size& size, const std::array<WorkerPool*, 2>& pools) {
    VolumeGrid grid;
    grid.size = size.voxels;
    grid.spacing = size.millimetres;
    const HeadVolume head(grid);
    std::vector<int16_t> target(grid.samples()), source(grid.samples());
    head.fill({}, noise, 1, target);
    Measurement<StandardCorrection> standard;
    Measurement<LeastSquaresCorrection> leastSquares;
    if (!standard.prepare(grid, target) || !leastSquares.prepare(grid, target))
        return;
    MotionParameters start{};
    for (int v = 1; v <= size.nrOfVolumes; ++v) {
        const float part = float(v) / 20.0f;
        head.fill({0.5f * part, -0.3f * part, 0.4f * part, 0.5f * part, -0.2f * part, 0.3f * part},
                  noise, unsigned(1 + v), source);
        const double before = 0.9 * double(v - 1) / 20.0;
        start = {0.5 * before, -0.3 * before, 0.4 * before,
                 0.5 * before, -0.2 * before, 0.3 * before};
        standard.take(source, start, pools);
        leastSquares.take(source, start, pools);
    }
    std::printf("%d x %d x %d, a copy of the volume: %.3f\n", grid.size[0], grid.size[1],
                grid.size[2], bestCopyTime<int16_t>(31, source));
    standard.print("standard");
    if (size.budgetMilliseconds > 0.0)
        std::printf("  budget %.0f, plain form %.0f", size.budgetMilliseconds,
                    plainTime(grid, target, source, start));
    std::printf("\n");
    leastSquares.print("least squares");
    std::printf("  %.1f times the standard method\n",
                leastSquares.onOneThread() / standard.onOneThread());
    std::fflush(stdout);
}

} // namespace

int main() {
    WorkerPool one(1), two(2);
    std::printf("Milliseconds for one volume, medians over volumes of the best of %d; a head that "
                "drifts, with noise\n"
                "                        one thread:                  two threads:                 "
                "times as fast:\n"
                "                 steps      fit  resample      all      fit  resample      all    "
                "all    fit  resample\n",
                repeats);
    for (const Size& size : {Size{{64, 64, 25}, {3.0f, 3.0f, 4.0f}, 4, 20},
                             Size{{74, 74, 36}, {2.6f, 2.6f, 3.3f}, 7, 20},
                             Size{{104, 104, 72}, {2.0f, 2.0f, 2.0f}, 16, 10},
                             Size{{192, 192, 96}, {1.1f, 1.1f, 1.5f}, 0, 3},
                             Size{{240, 240, 120}, {0.8f, 0.8f, 1.1f}, 0, 3}})
        measure(size, {&one, &two});
    return 0;
}
