// Time of motion correction for one volume at three sizes, compared with its plain form.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/head_volume.h"
#include "volume/motion_evaluation.h"
#include "volume/plain_motion.h"

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

/// Volumes of a drifting head, each fitted from 0.9 times the position of the previous one.
void measure(const Size& size, int repeats) {
    VolumeGrid grid;
    grid.size = size.voxels;
    grid.spacing = size.millimetres;
    const HeadVolume head(grid);
    std::vector<int16_t> target(grid.samples()), source(grid.samples()), result(grid.samples());
    head.fill({}, noise, 1, target);
    MotionEvaluator evaluator;
    if (!evaluator.setTarget(grid, target))
        return;
    constexpr int nrOfVolumes = 20;
    Times times, plainTimes;
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
        PlainMotion plain(grid, target, source);
        if (v % 7 == 0)
            correct(
                start,
                [&](const RigidTransformation& t, MotionEquations& equations) {
                    plain.evaluate(t, equations);
                },
                [&](const RigidTransformation& t) { (void)plain.resample(t); }, plainTimes);
    }
    std::printf("%3d x %3d x %2d  %5.0f  %6.2f  %8.2f  %6.2f  %6.0f  %7.0f\n", grid.size[0],
                grid.size[1], grid.size[2], median(times.steps), median(times.fit),
                median(times.resampling), median(times.fit) + median(times.resampling),
                size.budgetMilliseconds, median(plainTimes.fit) + median(plainTimes.resampling));
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
