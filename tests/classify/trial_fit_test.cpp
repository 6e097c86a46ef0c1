// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/trial_fit.h"

#include "support/expected_table.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace {

/// Written by make_trials_expected.py.
constexpr const char* table = "classify/expected_trials.tsv";
constexpr int nrOfVolumes = 40;
constexpr size_t nrOfKinds = 6;    ///< of voxels, in turn
constexpr size_t nrOfVoxels = 601; ///< two blocks and a part of one

RunVolumes makeRun() {
    RunVolumes volumes;
    EXPECT_TRUE(volumes.allocate(nrOfVolumes, nrOfVoxels));
    for (size_t kind = 0; const Cells& cells : expectedLines(table, "samples")) {
        const auto samples = numbersOf<int16_t>(cells);
        for (size_t v = kind++; v < nrOfVoxels; v += nrOfKinds)
            for (size_t t = 0; t < nrOfVolumes; ++t)
                volumes[t][v] = samples[t];
    }
    return volumes;
}

const TrialOptions trend{.linearTrend = true};

/// One trial of a run with these samples in its only voxel.
float valueOf(const TrialFit& fit, const std::vector<int>& samples) {
    RunVolumes volumes;
    EXPECT_TRUE(volumes.allocate(samples.size(), 1));
    for (size_t t = 0; t < samples.size(); ++t)
        volumes[t][0] = int16_t(samples[t]);
    std::vector<int> window(samples.size());
    std::iota(window.begin(), window.end(), 0);
    const size_t place = 0;
    float value = -1.0f;
    estimateVoxels(fit, volumes, window, {&place, 1}, {&value, 1});
    return value;
}

TEST(TrialFit, GivesWhatTheFormulasGive) {
    const RunVolumes volumes = makeRun();
    std::vector<size_t> backwards(nrOfVoxels);
    std::iota(backwards.rbegin(), backwards.rend(), size_t(0));
    for (const Cells& cells : expectedLines(table, "trial")) {
        SCOPED_TRACE(cells.join(' ').toStdString());
        const std::vector<double> numbers = numbersOf(cells);
        const auto number = [&](size_t column) { return int(numbers[column]); };
        const TrialOptions options{.preOnset = number(1),
                                   .postOnset = number(2),
                                   .useTrialDuration = number(3) == 1,
                                   .linearTrend = number(4) == 1,
                                   .estimate = TrialEstimate(number(5)),
                                   .zNormalization = number(6) == 1};
        const int start = number(7);
        const std::span expected = std::span(numbers).subspan(9); // of each kind of voxel
        const TrialFit fit{trialDesign(options, trialDuration(start, number(8)), float(numbers[0])),
                           options.estimate, options.zNormalization};
        const std::vector<int> window =
            windowVolumes(start - options.preOnset, fit.design.nrOfPoints, nrOfVolumes);
        EXPECT_EQ(fit.skipsNormalization(), options.zNormalization && window.size() == 2 &&
                                                options.estimate != TrialEstimate::PercentBeta);
        std::vector<float> values(nrOfVoxels), listed(nrOfVoxels);
        estimateConsecutiveVoxels(fit, volumes, window, 0, -32768, values);
        estimateVoxels(fit, volumes, window, backwards, listed);
        std::ranges::reverse(listed);
        EXPECT_EQ(values, listed); // to the bit
        // The response is in float, so a small value has the errors of what it is the rest of.
        for (size_t v = 0; v < nrOfVoxels; ++v) {
            const double exact = expected[v % nrOfKinds];
            EXPECT_NEAR(values[v], exact, 1e-5 * std::max(std::fabs(exact), 0.5)) << v;
        }
    }
}

TEST(TrialFit, LeavesDarkVoxelsAsTheyAre) {
    const RunVolumes volumes = makeRun();
    const TrialFit fit{trialDesign({}, 3, 2000.0f), TrialEstimate::Beta, false};
    const std::vector<int> window = windowVolumes(8, fit.design.nrOfPoints, nrOfVolumes);
    std::vector<float> all(nrOfVoxels - 300), bright(all.size(), 7.0f);
    estimateConsecutiveVoxels(fit, volumes, window, 300, -32768, all);
    const int limit = volumes[0][303];
    estimateConsecutiveVoxels(fit, volumes, window, 300, limit, bright);
    for (size_t v = 0; v < all.size(); ++v)
        EXPECT_EQ(bright[v], volumes[0][300 + v] < limit ? 7.0f : all[v]) << v;
}

TEST(TrialFit, ComparesTheLastPointWithThoseBefore) {
    const std::vector<int> samples{10, 12, 14, 12, 30};
    const TrialDesign design = lastPointDesign(5, {});
    EXPECT_FLOAT_EQ(valueOf({design, TrialEstimate::Beta, false}, samples), 18.0f);
    EXPECT_FLOAT_EQ(valueOf({design, TrialEstimate::PercentBeta, false}, samples), 150.0f);
    // Squared residuals 8, and 3 degrees of freedom, with and without normalization.
    for (const bool normalizes : {false, true})
        EXPECT_FLOAT_EQ(valueOf({design, TrialEstimate::TValue, normalizes}, samples),
                        18.0f / std::sqrt(8.0f / 3.0f * 1.25f));
    const TrialFit ofThree{lastPointDesign(3, {}), TrialEstimate::Beta, true};
    EXPECT_FALSE(ofThree.skipsNormalization());
    EXPECT_FLOAT_EQ(valueOf(ofThree, {1, 1, 4}), 3.0f / std::sqrt(2.0f));
    // The trend goes on: the last point lies 2 above it.
    EXPECT_NEAR(valueOf({lastPointDesign(5, trend), TrialEstimate::Beta, false}, {5, 6, 7, 8, 11}),
                2.0f, 1e-5f);
}

TEST(TrialFit, GivesZeroWhereNothingCanBeSaid) {
    const TrialDesign design = lastPointDesign(4, {});
    EXPECT_EQ(valueOf({design, TrialEstimate::TValue, false}, {9, 9, 9, 40}), 0.0f); // no error
    EXPECT_EQ(valueOf({design, TrialEstimate::PercentBeta, false}, {0, 0, 0, 40}), 0.0f);
    EXPECT_EQ(valueOf({lastPointDesign(2, {}), TrialEstimate::TValue, false}, {1, 9}), 0.0f);
    EXPECT_EQ(valueOf({design, TrialEstimate::Beta, true}, {-700, -700, -700, -700}), 0.0f);
    // A response of ones: it can't be told from the constant, and they share the mean.
    const std::vector<double> ones(4, 1.0);
    EXPECT_NEAR(
        valueOf({measuredResponseDesign(ones, {}), TrialEstimate::Beta, false}, {90, 110, 95, 105}),
        50.0f, 1e-4f);
}

TEST(TrialDesign, TakesWhatTheOptionsSay) {
    TrialOptions options{.preOnset = 1, .postOnset = 6};
    const TrialDesign standard = trialDesign(options, 2, 2000.0f);
    EXPECT_EQ(standard.nrOfPoints, 8);
    EXPECT_EQ(standard.nrOfPredictors, 2);
    EXPECT_EQ(trialDesign(options, 2, 1999.6f).X, standard.X);
    options.response = TrialResponse::MeanResponse;
    EXPECT_EQ(trialDesign(options, 2, 2000.0f).X, standard.X);
    options.adjustedHRF.timeToPeak = 5.0f;
    EXPECT_EQ(trialDesign(options, 2, 2000.0f).X, standard.X);
    options.response = TrialResponse::AdjustedTwoGamma;
    EXPECT_NE(trialDesign(options, 2, 2000.0f).X, standard.X);
    const std::vector<double> last{0, 0, 0, 1};
    EXPECT_EQ(measuredResponseDesign(last, trend).solution, lastPointDesign(4, trend).solution);
    EXPECT_EQ(measuredResponseDesign(last, trend).X,
              (std::vector<double>{0, 1, 0, 0, 1, 1.0 / 3, 0, 1, 2.0 / 3, 1, 1, 1}));
}

TEST(TrialDesign, StandsDamagedProtocols) {
    TrialOptions options{.preOnset = 2, .postOnset = 5, .useTrialDuration = true};
    EXPECT_EQ(trialDuration(3, 9), 6);
    EXPECT_EQ(pointsOfWindow(options, 6), 14);
    EXPECT_EQ(volumesAfterOnset(options, 6), 11);
    EXPECT_EQ(trialDuration(-5, 2147483647), 1000000000);
    EXPECT_EQ(trialDuration(2147483647, -5), -1000000000);
    EXPECT_EQ(volumesAfterOnset(options, trialDuration(-5, 2147483647)), 1000000000);
    EXPECT_EQ(trialDesign(options, -8, 2000.0f).nrOfPoints, 0);
    EXPECT_EQ(trialDesign(options, -7, 2000.0f).nrOfPoints, 1);
    EXPECT_EQ(lastPointDesign(0, trend).nrOfPoints, 0);
    EXPECT_EQ(lastPointDesign(1, trend).X, (std::vector<double>{1, 1, 0}));
    options.useTrialDuration = false;
    EXPECT_EQ(trialDesign(options, 1000000000, 0.0f).nrOfPoints, 8);
    EXPECT_EQ(windowVolumes(-2, 6, 3), (std::vector{0, 0, 0, 1, 2, 2}));
    EXPECT_EQ(windowVolumes(4, 2, 0), (std::vector{0, 0}));
}

} // namespace
