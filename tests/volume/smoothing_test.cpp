// Spatial smoothing against its plain form, a convolution in double and closed forms.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/smoothing.h"

#include "support/scripted_messages.h"
#include "volume/run_smoothing.h"
#include "volume_runs.h"

#include <limits>
#include <numeric>
#include <random>

namespace {

using Widths = std::array<double, 3>;

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

/// One pass along an axis, voxel by voxel, in the given arithmetic.
template<typename Real>
std::vector<Real> plainPass(const FMRProject& run, const std::vector<Real>& in, int axis,
                            const std::vector<double>& taps) {
    const std::array<int, 3> sizes{run.ResolutionX, run.ResolutionY, run.NrOfSlices};
    const std::array<int, 3> strides{1, sizes[0], sizes[0] * sizes[1]};
    const int half = int(taps.size()) / 2;
    std::vector<Real> out(in.size());
    for (int i = 0; i < int(in.size()); ++i) {
        const int position = i / strides[size_t(axis)] % sizes[size_t(axis)];
        Real sum = 0;
        for (int d = -half; d <= half; ++d) {
            const bool inside = position + d >= 0 && position + d < sizes[size_t(axis)];
            sum += Real(taps[size_t(d + half)]) *
                   in[size_t(inside ? i + d * strides[size_t(axis)] : i)];
        }
        out[size_t(i)] = sum;
    }
    return out;
}

std::vector<int16_t> plainSmoothing(const FMRProject& run, const Widths& widths) {
    std::vector<int16_t> samples = samplesOf(run);
    for (int axis = 0; axis < 3; ++axis) {
        const std::vector<float> sums =
            plainPass(run, std::vector<float>(samples.begin(), samples.end()), axis,
                      plainTaps(widths[size_t(axis)]));
        for (size_t i = 0; i < sums.size(); ++i)
            samples[i] = int16_t(std::min(std::max(sums[i], 0.0f), 32767.0f) + 0.5f);
    }
    return samples;
}

FMRProject randomRun(int sizeX, int sizeY, int nrOfSlices, int least, int range) {
    std::minstd_rand random(7);
    return runOf(sizeX, sizeY, nrOfSlices, 1,
                 [&](int, int, int, int) { return least + int(random() >> 8) % range; });
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
    const struct {
        std::array<int, 3> size;
        Widths widths;
    } cases[] = {{{64, 64, 25}, {5 / 3.0, 5 / 3.0, 1.25}},
                 {{37, 21, 9}, {2.5, 4.1, 3.0}},
                 {{19, 40, 5}, {7.0, 0.3, 9.0}},
                 {{5, 4, 3}, {56.0, 56.0, 56.0}},
                 {{33, 1, 1}, {3.0, std::nan(""), -1.0}}};
    for (const auto& c : cases) {
        SpatialSmoothing smoothing;
        const VoxelWidths widths{c.widths[0], c.widths[1], c.widths[2]};
        FMRProject whole = randomRun(c.size[0], c.size[1], c.size[2], -32768, 65536);
        const std::vector<int16_t> plain = plainSmoothing(whole, c.widths);
        // The voxels are 3 x 3 x 4 mm, so that the first case is 5 mm.
        ASSERT_TRUE(c.size[0] == 64 ? smoothing.smoothVolume(whole, 0, 5.0f)
                                    : smoothing.smoothVolume(whole, 0, widths));
        EXPECT_EQ(samplesOf(whole), plain) << c.size[0];

        FMRProject image = randomRun(c.size[0], c.size[1], c.size[2], 0, 3000);
        const std::vector<int16_t> samples = samplesOf(image);
        std::vector<double> exact(samples.begin(), samples.end());
        for (int axis = 0; axis < 3; ++axis)
            exact = plainPass(image, exact, axis, plainTaps(c.widths[size_t(axis)]));
        ASSERT_TRUE(smoothing.smoothVolume(image, 0, widths)); // with the memory of the first
        for (size_t i = 0; i < exact.size(); ++i)
            ASSERT_NEAR(image.volumes[0][i], std::floor(exact[i] + 0.5), 1.0) << i;
    }
}

TEST(SmoothVolume, RefusesWhatItCanNotDoAndLeavesTheVolume) {
    FMRProject run = randomRun(6, 5, 4, 0, 4000);
    run.pixelSizeX = run.pixelSizeY = run.sliceThickness = 1.0f;
    run.sliceGap = 0.0f;
    const std::vector<int16_t> before = samplesOf(run);
    SpatialSmoothing smoothing;
    const float infinity = std::numeric_limits<float>::infinity();
    for (const float width : {-4.0f, std::nanf(""), 56.2f, 1e30f, infinity})
        EXPECT_FALSE(smoothing.smoothVolume(run, 0, width)) << width;
    EXPECT_FALSE(smoothing.smoothVolume(run, 1, 4.0f));
    EXPECT_FALSE(smoothing.smoothVolume(run, -1, 4.0f));
    run.sliceThickness = 0.0f;
    EXPECT_FALSE(smoothing.smoothVolume(run, 0, 4.0f));
    EXPECT_EQ(samplesOf(run), before);
    run.sliceThickness = 1.0f;
    EXPECT_TRUE(smoothing.smoothVolume(run, 0, 56.0f)); // 101 taps
    EXPECT_TRUE(smoothing.smoothVolume(run, 0, 0.0f));  // taps without a positive sum
    EXPECT_EQ(samplesOf(run), std::vector<int16_t>(6 * 5 * 4, 0));
}

TEST(SmoothRun, ABlobStaysABlobWithTheSumOfTheVariances) {
    // The kernel of the space domain ends at 2.4 standard deviations and lacks 6 % of the variance,
    // which makes a hundredth of the blob's 20000.
    const struct {
        bool inSpaceDomain;
        bool in2D;
        double bound;
    } cases[] = {{false, false, 1}, {false, true, 1}, {true, false, 200}, {true, true, 200}};
    for (const auto& c : cases) {
        const double variance = 4.0;
        FMRProject run = runOf(
            33, 33, 25, 2, [&](int x, int y, int z, int) { return blob(x, y, z, variance, 1.0); });
        SpatialSmoothingOptions options;
        options.inSpaceDomain = c.inSpaceDomain;
        options.in2D = c.in2D;
        options.inMillimetres = false;
        options.fwhm = 3.0f;
        ASSERT_TRUE(smoothWhole(run, options));
        const double added = 9.0 / (8 * std::log(2.0));
        const double sum = variance + added;
        const double factor = std::pow(variance / sum, c.in2D ? 1.0 : 1.5);
        double largest = 0.0;
        for (int i = 0; i < 33 * 33 * 25; ++i) {
            const int x = i % 33;
            const int y = i / 33 % 33;
            const double z = i / (33 * 33);
            // In 2-D the variance across slices stays.
            const double scaledZ = c.in2D ? 12 + (z - 12) * std::sqrt(sum / variance) : z;
            const double expected = blob(x, y, scaledZ, sum, factor);
            largest = std::max(largest, std::abs(run.volumes[1][size_t(i)] - expected));
        }
        EXPECT_LT(largest, c.bound) << c.inSpaceDomain << c.in2D;
    }
}

TEST(SmoothRun, NothingLeaksToTheOppositeBorderAndBordersKeepTheirIntensity) {
    for (const bool inSpaceDomain : {false, true}) {
        FMRProject run =
            runOf(16, 12, 3, 1, [](int x, int, int, int) { return x < 4 ? 32767 : 0; });
        SpatialSmoothingOptions options;
        options.inSpaceDomain = inSpaceDomain;
        options.fwhm = 6.0f; // millimetres: 2 voxels in the slice
        ASSERT_TRUE(smoothWhole(run, options));
        for (size_t row = 0; row < 16 * 12 * 3; row += 16) {
            EXPECT_NEAR(run.volumes[0][row], 32767, 60);
            EXPECT_EQ(run.volumes[0][row + 15], 0);
        }
    }
}

TEST(SmoothRun, WidthsThatAreNoneAreRefusedWithAMessage) {
    ScriptedMessages messages;
    FMRProject run = randomRun(6, 5, 4, 0, 4000);
    const std::vector<int16_t> before = samplesOf(run);
    SpatialSmoothingOptions options;
    for (const float width : {0.0f, -1.0f, std::nanf(""), std::numeric_limits<float>::infinity()}) {
        options.fwhm = width;
        messages.expect(MessageLevel::Warning,
                        "ERROR: The width of the spatial smoothing must be above 0!");
        EXPECT_FALSE(smoothWhole(run, options));
    }
    options.fwhm = 1e30f;
    messages.expect(MessageLevel::Warning,
                    "ERROR: The width of the spatial smoothing is too large!");
    EXPECT_FALSE(smoothWhole(run, options));
    run.pixelSizeX = 0.0f;
    messages.expect(MessageLevel::Warning, "ERROR: The project does not state the size*");
    EXPECT_FALSE(smoothWhole(run, options));
    EXPECT_EQ(samplesOf(run), before);
}
