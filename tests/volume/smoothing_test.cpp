// Spatial smoothing against its plain form, voxel by voxel, and closed forms.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/smoothing.h"

#include "support/scripted_messages.h"
#include "volume/run_smoothing.h"
#include "volume_runs.h"

#include <limits>
#include <numeric>
#include <random>

namespace {

constexpr float infinity = std::numeric_limits<float>::infinity();

/// The prescribed taps for a full width in voxels; one tap of 1 without a width.
std::vector<double> plainTaps(double width) {
    const int half = width > 0 ? int(std::lround(width * 0.9)) : 0;
    std::vector<double> taps;
    for (int d = -half; d <= half; ++d)
        taps.push_back(width > 0 ? std::exp(-4 * std::log(2.0) * d * d / (width * width)) : 1.0);
    const double sum = std::accumulate(taps.begin(), taps.end(), 0.0);
    for (double& tap : taps)
        tap /= sum;
    return taps;
}

/// The first volume of the run, smoothed in three passes, as samples in float or without rounding
/// in double.
template<typename Real, typename Sample>
std::vector<Sample> plainSmoothing(const FMRProject& run, const std::array<double, 3>& widths) {
    std::vector<Sample> samples;
    for (const int16_t sample : run.volumes[0])
        samples.push_back(Sample(uint16_t(sample)));
    const std::array<int, 3> sizes{run.ResolutionX, run.ResolutionY, run.NrOfSlices};
    int stride = 1;
    for (size_t axis = 0; axis < 3; stride *= sizes[axis], ++axis) {
        const std::vector<double> taps = plainTaps(widths[axis]);
        const int half = int(taps.size()) / 2;
        const std::vector<Sample> in = samples;
        for (int i = 0; i < int(in.size()); ++i) {
            const int position = i / stride % sizes[axis];
            Real sum = 0;
            for (int d = -half; d <= half; ++d) {
                const bool inside = position + d >= 0 && position + d < sizes[axis];
                sum += Real(taps[size_t(d + half)]) * Real(in[size_t(inside ? i + d * stride : i)]);
            }
            const Real rounding = std::is_integral_v<Sample> ? Real(0.5) : Real(0);
            samples[size_t(i)] = Sample(std::clamp(sum, Real(0), Real(32767)) + rounding);
        }
    }
    return samples;
}

FMRProject randomRun(int sizeX, int sizeY, int nrOfSlices, int range = 65536) {
    std::minstd_rand random(7);
    return runOf(sizeX, sizeY, nrOfSlices, 1,
                 [&](int, int, int, int) { return int(random() >> 8) % range; });
}

double blob(double x, double y, double z, double variance, double factor) {
    return 20000 * factor *
           std::exp(-((x - 16) * (x - 16) + (y - 16) * (y - 16) + (z - 12) * (z - 12)) /
                    (2 * variance));
}

bool smoothWhole(FMRProject& run, const SpatialSmoothingOptions& options) {
    RecordedProgress progress;
    return smoothRun(run, run.NrOfVolumes, options, StepProgress(progress));
}

} // namespace

TEST(SmoothVolume, IsBitForBitThePlainFormAndCloseToAConvolutionInDouble) {
    const std::pair<std::array<int, 3>, std::array<double, 3>> cases[] = {
        {{64, 64, 25}, {5 / 3.0, 5 / 3.0, 1.25}},
        {{37, 21, 9}, {2.5, 4.1, 3.0}},
        {{19, 40, 5}, {7.0, 0.3, 9.0}},
        {{5, 4, 3}, {56.0, 56.0, 56.0}},
        {{33, 1, 1}, {3.0, std::nan(""), -1.0}}};
    SpatialSmoothing smoothing; // with the memory of the case before
    for (const auto& [size, taken] : cases) {
        FMRProject run = randomRun(size[0], size[1], size[2]);
        const std::vector<uint16_t> plain = plainSmoothing<float, uint16_t>(run, taken);
        // The voxels are 3 x 3 x 4 mm, so that the first case is 5 mm.
        const VoxelWidths widths{taken[0], taken[1], taken[2]};
        ASSERT_TRUE(size[0] == 64 ? smoothing.smoothVolume(run, 0, 5.0f)
                                  : smoothing.smoothVolume(run, 0, widths));
        EXPECT_TRUE(std::ranges::equal(samplesOf(run), plain)) << size[0];

        FMRProject image = randomRun(size[0], size[1], size[2], 3000);
        const std::vector<double> exact = plainSmoothing<double, double>(image, taken);
        ASSERT_TRUE(smoothing.smoothVolume(image, 0, widths));
        for (size_t i = 0; i < exact.size(); ++i)
            ASSERT_NEAR(image.volumes[0][i], std::floor(exact[i] + 0.5), 1.0) << i;
    }
}

TEST(SmoothVolume, RefusesWhatItCanNotDoAndLeavesTheVolume) {
    FMRProject run = randomRun(6, 5, 4);
    run.pixelSizeX = run.pixelSizeY = run.sliceThickness = 1.0f;
    run.sliceGap = 0.0f;
    const std::vector<int16_t> before = samplesOf(run);
    SpatialSmoothing smoothing;
    for (const float width : {-4.0f, std::nanf(""), 56.2f, infinity})
        EXPECT_FALSE(smoothing.smoothVolume(run, 0, width)) << width;
    EXPECT_FALSE(smoothing.smoothVolume(run, 1, 4.0f));
    EXPECT_EQ(samplesOf(run), before);
    EXPECT_TRUE(smoothing.smoothVolume(run, 0, 56.0f)); // 101 taps
    EXPECT_TRUE(smoothing.smoothVolume(run, 0, 0.0f));  // taps without a positive sum
    EXPECT_EQ(samplesOf(run), std::vector<int16_t>(6 * 5 * 4, 0));
}

TEST(SmoothRun, InTheFrequencyDomainABlobStaysABlobWithTheSumOfTheVariances) {
    const double variance = 4.0;
    const double sum = variance + 9.0 / (8 * std::log(2.0));
    for (const bool in2D : {false, true}) {
        FMRProject run = runOf(
            33, 33, 25, 2, [&](int x, int y, int z, int) { return blob(x, y, z, variance, 1.0); });
        ASSERT_TRUE(smoothWhole(run, {true, false, in2D, false, 3.0f}));
        const double factor = std::pow(variance / sum, in2D ? 1.0 : 1.5);
        for (int i = 0; i < 33 * 33 * 25; ++i) {
            const double z = i / (33 * 33);
            // In 2-D the variance across slices stays.
            const double scaledZ = in2D ? 12 + (z - 12) * std::sqrt(sum / variance) : z;
            ASSERT_NEAR(run.volumes[1][size_t(i)], blob(i % 33, i / 33 % 33, scaledZ, sum, factor),
                        1.0);
        }
    }
    // Nothing leaks to the opposite border.
    FMRProject run = runOf(16, 12, 3, 1, [](int x, int, int, int) { return x < 4 ? 32767 : 0; });
    ASSERT_TRUE(smoothWhole(run, {true, false, false, true, 6.0f})); // 2 voxels in the slice
    EXPECT_NEAR(run.volumes[0][0], 32767, 60);
    EXPECT_EQ(run.volumes[0][15], 0);
    // Samples are unsigned, results no larger than the largest signed one.
    run = runOf(16, 12, 3, 1, [](int x, int, int, int) { return x < 12 ? 60000 : 30000; });
    ASSERT_TRUE(smoothWhole(run, {true, false, false, true, 6.0f}));
    EXPECT_EQ(run.volumes[0][0], 32767);
    EXPECT_NEAR(run.volumes[0][15], 30000, 60);
}

TEST(SmoothRun, SmoothsInSpaceOrRefusesWithAMessage) {
    ScriptedMessages messages;
    FMRProject run = randomRun(6, 5, 4);
    const std::vector<uint16_t> expected = plainSmoothing<float, uint16_t>(run, {2.0, 2.0, 0.0});
    EXPECT_TRUE(smoothWhole(run, {true, true, true, false, 2.0f}));
    messages.expectWarning("ERROR: The width of the spatial smoothing must be above 0!");
    EXPECT_FALSE(smoothWhole(run, {true, true, false, true, std::nanf("")}));
    run.pixelSizeX = 0.0f;
    messages.expectWarning("ERROR: The project does not state the size*");
    EXPECT_FALSE(smoothWhole(run, {true, true, false, true, 4.0f}));
    EXPECT_TRUE(std::ranges::equal(samplesOf(run), expected));
}
