// Time of motion correction for one volume at three sizes, compared with its plain form.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/head_volume.h"
#include "volume/least_squares_motion.h"
#include "volume/motion_evaluation.h"
#include "volume/plain_motion.h"
#include "volume/spline_resampling.h"

#include <cstdio>
#include <ctime>

namespace {

struct Size {
    std::array<int, 3> voxels;
    std::array<float, 3> millimetres;
    double budgetMilliseconds;
};

constexpr double noise = 10.0; // sample units, in a head of 900

/// Processor time, so that other programs don't count.
double milliseconds() {
    return double(std::clock()) * 1e3 / CLOCKS_PER_SEC;
}

double median(std::vector<double> values) {
    std::ranges::nth_element(values, values.begin() + ptrdiff_t(values.size() / 2));
    return values[values.size() / 2];
}

/// Cost of one volume.
struct Times {
    std::vector<double> fit;
    std::vector<double> resampling;
    std::vector<double> steps;
};

template<typename Evaluation, typename Resampling>
void correct(const MotionParameters& start, const Evaluation& evaluate, const Resampling& resample,
             Times& times) {
    bool failed = false;
    const double begin = milliseconds();
    const MotionFit fit = fitMotion(evaluate, start, failed);
    const double fitted = milliseconds();
    resample(fit.transformation);
    times.fit.push_back(fitted - begin);
    times.resampling.push_back(milliseconds() - fitted);
    times.steps.push_back(fit.steps);
}

/// The method of least squares.
class ExactCorrection {
public:
    [[nodiscard]] bool prepare(const VolumeGrid& grid, std::span<const int16_t> target) {
        return fitting_.setTarget(grid, target) && spline_.allocate(grid, SplineDegree::Cubic);
    }
    void correct(std::span<const int16_t> source, const MotionParameters& start,
                 std::span<int16_t> result, Times& times) {
        const double begin = milliseconds();
        const auto fit = fitting_.fit(source, transformationOf(start));
        const double fitted = milliseconds();
        if (!fit)
            return;
        spline_.setSamples(source);
        resampleVolume(spline_, result, fit->transformation);
        times.fit.push_back(fitted - begin);
        times.resampling.push_back(milliseconds() - fitted);
        times.steps.push_back(fit->steps);
    }

private:
    LeastSquaresMotion fitting_;
    SplineVolume spline_;
};

/// Milliseconds for copying volumes of this size once: what the memory of the machine costs.
double copyTime(std::span<const int16_t> volume) {
    constexpr int copies = 20;
    std::vector<std::vector<int16_t>> to(copies, std::vector<int16_t>(volume.size()));
    const double begin = milliseconds();
    for (auto& copy : to)
        std::ranges::copy(volume, copy.begin());
    return (milliseconds() - begin) / copies;
}

/// Volumes of a drifting head, each fitted from 0.9 times the position of the previous one.
void measure(const Size& size, int repeats) {
    VolumeGrid grid;
    grid.size = size.voxels;
    grid.spacing = size.millimetres;
    const HeadVolume head(grid);
    std::vector<int16_t> target(grid.samples()), source(grid.samples()), result(grid.samples());
    head.fill({}, noise, 1, target);
    MotionEvaluator evaluator;
    ExactCorrection exact;
    if (!evaluator.setTarget(grid, target) || !exact.prepare(grid, target))
        return;
    constexpr int nrOfVolumes = 20;
    Times times, exactTimes, plainTimes;
    for (int v = 1; v <= nrOfVolumes; ++v) {
        const float part = float(v) / nrOfVolumes;
        head.fill({0.5f * part, -0.3f * part, 0.4f * part, 0.5f * part, -0.2f * part, 0.3f * part},
                  noise, unsigned(1 + v), source);
        const double before = 0.9 * double(v - 1) / nrOfVolumes;
        const MotionParameters start{0.5 * before, -0.3 * before, 0.4 * before,
                                     0.5 * before, -0.2 * before, 0.3 * before};
        for (int i = 0; i < repeats; ++i)
            correct(
                start,
                [&](const RigidTransformation& t, MotionEquations& equations) {
                    evaluator.evaluate(source, t, equations);
                },
                [&](const RigidTransformation& t) { resampleVolume(grid, source, result, t); },
                times);
        for (int i = 0; i < repeats; ++i)
            exact.correct(source, start, result, exactTimes);
        PlainMotion plain(grid, target, source);
        if (v % 7 == 0)
            correct(
                start,
                [&](const RigidTransformation& t, MotionEquations& equations) {
                    plain.evaluate(t, equations);
                },
                [&](const RigidTransformation& t) { (void)plain.resample(t); }, plainTimes);
    }
    const double all = median(times.fit) + median(times.resampling);
    const double exactAll = median(exactTimes.fit) + median(exactTimes.resampling);
    std::printf("%3d x %3d x %2d  %5.0f  %6.2f  %8.2f  %6.2f  least squares: %.1f times, a copy: "
                "%.2f\n",
                grid.size[0], grid.size[1], grid.size[2], median(exactTimes.steps),
                median(exactTimes.fit), median(exactTimes.resampling), exactAll, exactAll / all,
                copyTime(source));
    std::printf("%3d x %3d x %2d  %5.0f  %6.2f  %8.2f  %6.2f  %6.0f  %7.0f\n", grid.size[0],
                grid.size[1], grid.size[2], median(times.steps), median(times.fit),
                median(times.resampling), all, size.budgetMilliseconds,
                median(plainTimes.fit) + median(plainTimes.resampling));
}

} // namespace

int main() {
    std::printf(
        "Milliseconds of processor time for one volume, medians; a head that drifts, with noise\n"
        "size            steps     fit  resample     all  budget    plain\n");
    for (const Size& size :
         {Size{{64, 64, 25}, {3.0f, 3.0f, 4.0f}, 4}, Size{{74, 74, 36}, {2.6f, 2.6f, 3.3f}, 7},
          Size{{104, 104, 72}, {2.0f, 2.0f, 2.0f}, 16}})
        measure(size, 11);
    return 0;
}
