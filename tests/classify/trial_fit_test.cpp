// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/trial_fit.h"

#include "support/files.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace {

// Samples are those of make_trials_expected.py, in which they are written once more.

constexpr int nrOfVolumes = 40;
constexpr int nrOfKinds = 6;       ///< of voxels, in turn
constexpr size_t nrOfVoxels = 601; ///< two blocks and a part of one

int sampleOf(int kind, int noise, int t) {
    switch (kind) {
    case 0:
        return noise % 65536 - 32768;
    case 1:
        return 500;
    case 2:
        return 30000 + noise % 3;
    case 3:
        return 800 + noise % 61;
    case 4:
        return -300 - noise % 200;
    default:
        return 1000 + 7 * t + noise % 11;
    }
}

RunVolumes makeRun() {
    RunVolumes volumes;
    EXPECT_TRUE(volumes.allocate(nrOfVolumes, nrOfVoxels));
    for (int kind = 0; kind < nrOfKinds; ++kind) {
        uint32_t state = uint32_t(4711 + 977 * kind);
        for (int t = 0; t < nrOfVolumes; ++t) {
            state = (state * 1103515245u + 12345u) & 0x7fffffffu;
            for (size_t v = size_t(kind); v < nrOfVoxels; v += nrOfKinds)
                volumes[size_t(t)][v] = int16_t(sampleOf(kind, int(state >> 12), t));
        }
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

struct Case {
    TrialOptions options;
    float TR = 0.0f;
    int start = 0;
    int end = 0;
    std::vector<double> values; ///< of each kind of voxel
};

std::vector<Case> casesOf(const QByteArray& table) {
    std::vector<Case> cases;
    for (const QByteArray& line : table.trimmed().split('\n')) {
        const QList<QByteArray> cells = line.split('\t');
        Case c;
        c.TR = cells[0].toFloat();
        c.options.preOnset = cells[1].toInt();
        c.options.postOnset = cells[2].toInt();
        c.options.useTrialDuration = cells[3] == "1";
        c.options.linearTrend = cells[4] == "1";
        c.options.estimate = cells[5] == "t"      ? TrialEstimate::TValue
                             : cells[5] == "beta" ? TrialEstimate::Beta
                                                  : TrialEstimate::PercentBeta;
        c.options.zNormalization = cells[6] == "1";
        c.start = cells[7].toInt();
        c.end = cells[8].toInt();
        for (int kind = 0; kind < nrOfKinds; ++kind)
            c.values.push_back(cells[9 + kind].toDouble());
        cases.push_back(c);
    }
    return cases;
}

TEST(TrialFit, GivesWhatTheFormulasGive) {
    const RunVolumes volumes = makeRun();
    std::vector<size_t> backwards(nrOfVoxels);
    std::iota(backwards.rbegin(), backwards.rend(), size_t(0));
    const std::vector<Case> cases =
        casesOf(contentOf(VELO_SOURCE_DIR "/tests/classify/expected_trials.tsv"));
    ASSERT_EQ(cases.size(), 219u);
    for (const Case& c : cases) {
        SCOPED_TRACE(&c - cases.data());
        const int duration = trialDuration(c.start, c.end);
        const TrialFit fit{trialDesign(c.options, duration, c.TR), c.options.estimate,
                           c.options.zNormalization};
        const std::vector<int> window =
            windowVolumes(c.start - c.options.preOnset, fit.design.nrOfPoints, nrOfVolumes);
        EXPECT_EQ(fit.skipsNormalization(), c.options.zNormalization && window.size() == 2 &&
                                                c.options.estimate != TrialEstimate::PercentBeta);
        std::vector<float> values(nrOfVoxels), listed(nrOfVoxels);
        estimateConsecutiveVoxels(fit, volumes, window, 0, -32768, values);
        estimateVoxels(fit, volumes, window, backwards, listed);
        std::ranges::reverse(listed);
        EXPECT_EQ(values, listed); // to the bit
        for (size_t v = 0; v < nrOfVoxels; ++v) {
            const double expected = c.values[v % nrOfKinds];
            // The response is in float, so a small value has the errors of what it is the rest of.
            EXPECT_NEAR(values[v], expected, 1e-5 * std::max(std::fabs(expected), 0.5)) << v;
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
    // Squared residuals 8, and 3 degrees of freedom.
    const float t = 18.0f / std::sqrt(8.0f / 3.0f * 1.25f);
    EXPECT_FLOAT_EQ(valueOf({design, TrialEstimate::TValue, false}, samples), t);
    EXPECT_FLOAT_EQ(valueOf({design, TrialEstimate::TValue, true}, samples), t);
    EXPECT_FLOAT_EQ(valueOf({lastPointDesign(3, {}), TrialEstimate::Beta, true}, {1, 1, 4}),
                    3.0f / std::sqrt(2.0f)); // three points are enough to normalize
    EXPECT_FALSE(
        TrialFit({lastPointDesign(3, {}), TrialEstimate::Beta, true}).skipsNormalization());
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
