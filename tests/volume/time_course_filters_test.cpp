// Slice times, drifts and temporal smoothing against closed forms and NumPy.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/numerics/spline.h"
#include "support/files.h"
#include "support/scripted_messages.h"
#include "volume/high_pass.h"
#include "volume/run_smoothing.h"
#include "volume/slice_timing.h"
#include "volume_runs.h"

#include <QDir>
#include <QTemporaryDir>
#include <numbers>

namespace {

/// Slices in the order in which a scanner measures them: all, or every other one from `start` and
/// then the rest, upwards or downwards.
std::vector<int> measuredOrder(int nrOfSlices, bool descending, int step, int start) {
    std::vector<int> order;
    for (int pass = 0; pass < step; ++pass)
        for (int i = pass == 0 ? start : 1 - start; i < nrOfSlices; i += step)
            order.push_back(descending ? nrOfSlices - 1 - i : i);
    return order;
}

bool correct(FMRProject& run, const SliceScanTimeOptions& options) {
    RecordedProgress progress;
    return correctSliceScanTime(run, run.NrOfVolumes, options, StepProgress(progress));
}

/// Puts a time course into every voxel of a run of two slices.
FMRProject runWithCourse(const std::vector<int>& course) {
    return runOf(3, 2, 2, int(course.size()),
                 [&](int, int, int, int v) { return course[size_t(v)]; });
}

std::vector<int> courseOf(const FMRProject& run, size_t voxel) {
    std::vector<int> course;
    for (size_t v = 0; v < run.volumes.size(); ++v)
        course.push_back(run.volumes[v][voxel]);
    return course;
}

} // namespace

TEST(SliceTiming, ASineMeasuredSliceBySliceComesBackAligned) {
    constexpr int volumes = 60;
    const auto sine = [](double v) {
        return 2000 + 1000 * std::sin(2 * std::numbers::pi * v / 20);
    };
    // Linear interpolation is off by an eighth of the second derivative at most, 12.3; the spline
    // by 5/384 of the fourth derivative, 0.13, but near the ends it lacks curvature; the six taps
    // of the sinc by 3.3, and near the ends it is linear. Roundings add up to 1.3.
    const std::array<std::array<double, 2>, 3> bounds{{{13.4, 13.4}, {1.4, 7.0}, {4.6, 13.4}}};
    for (int variant = 0; variant < 36; ++variant) {
        const int n = 4 + variant % 2;
        const bool descending = variant / 2 % 2 == 1;
        const int pattern = variant / 4 % 3;
        const size_t method = size_t(variant / 12); // linear, spline, sinc
        SliceScanTimeOptions options;
        options.ascendingSliceOrder = !descending;
        options.descendingSliceOrder = descending;
        options.interleavedSliceOrder = pattern == 1;
        options.interleaved2SliceOrder = pattern == 2;
        options.cubicSplineInterpolation = method == 1;
        options.sincInterpolation = method == 2;
        const auto order = measuredOrder(n, descending, pattern == 0 ? 1 : 2, pattern == 2 ? 1 : 0);
        FMRProject run = runOf(3, 2, n, volumes, [&](int, int, int s, int v) {
            return sine(v + double(std::ranges::find(order, s) - order.begin()) / n);
        });
        ASSERT_TRUE(correct(run, options));
        for (int v = 1; v < volumes; ++v)
            for (const int16_t sample : run.volumes[size_t(v)])
                ASSERT_NEAR(sample, sine(v), bounds[method][v < 6 || v > volumes - 6])
                    << "variant " << variant << ", volume " << v;
    }
}

TEST(SliceTiming, SplinesOfABlockAreBitForBitThoseOfSingleCourses) {
    for (const size_t volumes : {2u, 3u, 4u, 50u}) {
        FMRProject run = runOf(15, 9, 3, int(volumes), [](int x, int y, int s, int v) {
            return (x * 7919 + y * 104729 + s * 1299709 + v * v * 611953) % 65536;
        });
        std::vector<float> times(volumes);
        std::iota(times.begin(), times.end(), 0.0f);
        std::vector<int16_t> expected = samplesOf(run);
        const size_t stride = run.volumeSamples();
        for (size_t i = 0; i < stride; ++i) {
            std::vector<float> course;
            for (size_t v = 0; v < volumes; ++v)
                course.push_back(uint16_t(run.volumes[v][i]));
            const std::vector<float> seconds = numerics::splineSecondDerivatives(times, course);
            const double delay = double(i / 135) * double(run.InterSliceTime) / double(run.TR);
            for (size_t v = 1; v < volumes; ++v) {
                const float at = float(double(v) - delay);
                const double value = numerics::splineValue(times, course, seconds, at);
                expected[v * stride + i] = int16_t(int(std::clamp(value, 0.0, 65535.0) + 0.5));
            }
        }
        ASSERT_TRUE(correct(run, {}));
        EXPECT_EQ(samplesOf(run), expected) << volumes;
    }
}

TEST(SliceTiming, ValuesAreThoseOfNumPy) {
    // Slice 1 of 2 is half a volume late. Near the ends the sinc is linear.
    const std::vector<int> course{0, 100, 65535, 65535, 7, 40000, 50000, 3};
    // Sinc, spline, or linear without them.
    const std::tuple<bool, bool, std::vector<uint16_t>> cases[] = {
        {false, false, {0, 50, 32818, 65535, 32771, 20004, 45000, 25002}},
        {true, false, {0, 50, 32818, 65535, 27206, 10807, 45000, 25002}},
        {false, true, {0, 0, 31244, 65535, 27558, 11883, 54373, 29377}}};
    for (const auto& [sinc, spline, expected] : cases) {
        SliceScanTimeOptions options;
        options.sincInterpolation = sinc;
        options.cubicSplineInterpolation = spline;
        FMRProject run = runWithCourse(course);
        ASSERT_TRUE(correct(run, options));
        const std::vector<int> shifted = courseOf(run, 6);
        EXPECT_EQ(std::vector<uint16_t>(shifted.begin(), shifted.end()), expected);
    }
}

// Two slices at a time, in an order that no pattern has; the pattern is ignored.
TEST(SliceTiming, MeasuredTimesOfSeveralSlicesAtOnceComeBackAligned) {
    const auto ramp = [](double v) { return 1000 + 100 * v; };
    FMRProject run = runOf(3, 2, 6, 9, [&](int, int, int s, int v) {
        return ramp(v + std::array{0.25, 0.75, 0.0}[size_t(s % 3)]);
    });
    run.InterSliceTime = 5000; // ignored as well
    run.sliceTimes = {500, 1500, 0, 500, 1500, 0};
    SliceScanTimeOptions options;
    options.cubicSplineInterpolation = false;
    options.measuredTimes = true;
    ASSERT_TRUE(correct(run, options));
    for (int v = 1; v < 9; ++v)
        for (const int16_t sample : run.volumes[size_t(v)])
            ASSERT_NEAR(sample, ramp(v), 0.5) << v;
}

TEST(SliceTiming, TimesThatAreNotThereOrCanNotBeChangeNothing) {
    const QString missing = "ERROR: The headers of the run gave no time*";
    const QString outside = "ERROR: The times of the slices do not lie within*";
    const std::tuple<float, std::vector<float>, QString> cases[] = {
        {2000, {0}, missing},
        {2000, {0, 2000}, outside},
        {2000, {-1, 0}, outside},
        {2000, {0, NAN}, outside},
        {NAN, {}, "ERROR: The TR or the inter-slice time of the project is invalid!"}};
    for (const auto& [TR, times, message] : cases) {
        ScriptedMessages messages;
        messages.expectWarning(message);
        FMRProject run = runWithCourse({5, 9, 2});
        run.TR = TR;
        run.sliceTimes = times;
        SliceScanTimeOptions options;
        options.measuredTimes = !times.empty();
        EXPECT_FALSE(correct(run, options));
        EXPECT_EQ(courseOf(run, 6), (std::vector<int>{5, 9, 2}));
    }
}

TEST(HighPass, LeavesTheMeanAndWhatIsFastAndAFileWithTheDesign) {
    QTemporaryDir folder;
    const QString oldFolder = QDir::currentPath();
    ASSERT_TRUE(QDir::setCurrent(folder.path()));
    FMRProject run = runWithCourse(
        {903, 1024, 320, 1027, 721, 763, 867, 557, 1181, 348, 550, 645, 814, 667, 417, 340});
    for (size_t v = 0; v < 16; ++v) {
        run.volumes[v][4] = -5; // flat
        run.volumes[v][5] = v == 8 ? 32767 : 0;
    }
    RecordedProgress progress;
    EXPECT_TRUE(highPassFourier(run, 16, 2, StepProgress(progress)));
    EXPECT_TRUE(QDir::setCurrent(oldFolder));
    EXPECT_EQ(progress.values, (std::vector<int>{50, 100}));
    // The residual of numpy.linalg.lstsq plus the last beta.
    EXPECT_EQ(courseOf(run, 11), (std::vector<int>{624, 935, 320, 1015, 640, 622, 723, 474, 1186,
                                                   418, 630, 690, 828, 713, 594, 731}));
    EXPECT_EQ(courseOf(run, 4), std::vector<int>(16, -5));
    EXPECT_EQ(std::ranges::min(courseOf(run, 5)), 0);
    const QList<QByteArray> lines = contentOf(folder.filePath("DM-Fourier.txt")).split('\n');
    ASSERT_EQ(lines.size(), 17);
    EXPECT_EQ(lines[1], "0.382683 0.923880 0.707107 0.707107 -0.866667 1.000000 ");
}

TEST(LinearTrend, IsRemovedAndTheMeanStays) {
    RecordedProgress progress;
    FMRProject run = runWithCourse({10, 20, 28, 14}); // mean 18, slope 2
    ASSERT_TRUE(removeLinearTrend(run, 4, StepProgress(progress)));
    EXPECT_EQ(courseOf(run, 0), (std::vector<int>{13, 21, 27, 11}));
    // Samples are unsigned: a mean of 32768 with no slope, clamped to the largest signed one.
    run = runWithCourse({32760, 32776, 32776, 32760});
    ASSERT_TRUE(removeLinearTrend(run, 4, StepProgress(progress)));
    EXPECT_EQ(courseOf(run, 0), (std::vector<int>{32760, 32767, 32767, 32760}));
}

TEST(TemporalGaussian, WeighsNeighboursWithinTheRun) {
    // At half the full width the weight is half; weights that exist are divided by their sum.
    RecordedProgress progress;
    TemporalOptions options;
    for (const bool inSeconds : {false, true}) { // TR is 2 s
        FMRProject run = runWithCourse({3000, 0, 0});
        options.gaussianInSeconds = inSeconds;
        options.gaussianWidth = inSeconds ? 4.0f : 2.0f;
        ASSERT_TRUE(smoothTimeCourses(run, 3, options, StepProgress(progress)));
        const int expected[] = {1920, 750, 120}; // weights 1, 1/2, 1/16
        for (size_t v = 0; v < 3; ++v)
            EXPECT_NEAR(run.volumes[v][3], expected[v], 1) << v;
    }
    ScriptedMessages messages;
    FMRProject run = runWithCourse({1, 2, 3});
    options.gaussianWidth = std::nanf("");
    messages.expectWarning("ERROR: The width of the temporal Gaussian must be above 0!");
    EXPECT_FALSE(smoothTimeCourses(run, 3, options, StepProgress(progress)));
}
