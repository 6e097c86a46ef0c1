// Maps of a fitted model against SciPy's, and where they are 0.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/whole_run_maps.h"

#include "stats/contrasts.h"
#include "stats/incremental_glm.h"
#include "stats/statistical_maps.h"
#include "stats/thresholds.h"
#include "stats/whole_run_glm.h"
#include "support/recorded_progress.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace {

using Shown = ShownStatistic;
constexpr size_t p = 5;
constexpr int points = 40; ///< of each of two studies
constexpr size_t voxels = 3;
constexpr VolumeSize imageSize{5, 1, 1}; ///< two further voxels hold no model

/// Three conditions and a constant for each study.
WholeRunDesign makeDesign() {
    WholeRunDesign design;
    design.studies.assign(2, {points, "", "", 1});
    design.predictors.resize(p);
    design.conditionOfColumn = {0, 1, 2, -1, -1};
    for (int t = 0; t < 2 * points; ++t)
        for (int j = 0; j < int(p); ++j)
            design.GLMDesign.push_back(j < 3 ? float((t * (3 + 2 * j) + 5 * j) % 9) / 8.0f
                                             : float(t / points == j - 3));
    return design;
}

/// The samples of make_expected_maps.py, point by point; further voxels are 0.
std::vector<int16_t> samplesOf(const WholeRunDesign& design) {
    std::vector<int16_t> samples(2 * points * imageSize.samples());
    for (size_t voxel = 0; voxel < voxels; ++voxel) {
        double noise = 0.0;
        for (size_t t = 0; t < 2 * points; ++t) {
            const float* x = design.GLMDesign.data() + t * p;
            noise = 0.2 * double(voxel + 1) * noise +
                    double((t * t * 37 + voxel * 101 + t * 13) % 97) - 48.0;
            const double effect = double(40 * x[0] - 25.0f * float(voxel) * x[1] + 12 * x[2]);
            samples[t * imageSize.samples() + voxel] = int16_t(std::floor(
                9000.0 * double(voxel + 1) + 70.0 * double(t / points) + effect + noise));
        }
    }
    return samples;
}

struct OneSlice : SliceSource {
    std::vector<int16_t> samples;
    explicit OneSlice(std::vector<int16_t> all) : samples(std::move(all)) {}
    bool loadSlice(int /*slice*/, std::span<const int16_t*> times) override {
        for (size_t t = 0; t < times.size(); ++t)
            times[t] = samples.data() + t * imageSize.samples();
        return true;
    }
};

WholeRunModel fittedModel(bool corrected, WholeRunDesign design = makeDesign()) {
    WholeRunModel model;
    design.CorrectSerialCorrelations = corrected;
    OneSlice samples(samplesOf(design));
    RecordedProgress progress;
    EXPECT_EQ(fitWholeRunModel(model, design, imageSize, samples, progress), WholeRunFit::Done);
    return model;
}

/// The contrasts of the table below over the columns of a run, of which the last is its constant.
ContrastDefinitions select(const std::vector<int>& which, Shown shown = Shown::T) {
    ContrastDefinitions contrasts;
    contrasts.ContrastWeights = {
        {1, 0, 0, 0}, {0, 1, 0, 0}, {1, -1, 0, 0}, {1, 1, 0, 0}, {1, 1, -2, 0}};
    contrasts.NrOfContrasts = 5;
    contrasts.ContrastSelectionStates.assign(5, ContrastOff);
    for (const int index : which)
        contrasts.ContrastSelectionStates[size_t(index)] = ContrastPositive;
    contrasts.shownStatistic = shown;
    return contrasts;
}

BrainMask wholeImage() {
    return {std::vector<uint8_t>(imageSize.samples(), 1), {{0, imageSize.samples()}}};
}

StatisticalMaps mapsOf(const WholeRunModel& model, ContrastDefinitions contrasts,
                       const BrainMask& mask = wholeImage()) {
    StatisticalMaps maps;
    EXPECT_TRUE(computeContrastMaps(model, mask, contrasts, maps));
    return maps;
}

std::vector<float> values(const StatisticalMaps& maps, int map = 0) {
    return {maps.map(map).begin(), maps.map(map).end()};
}

/// A map of make_expected_maps.py, its first degrees of freedom and the p of its first voxel.
struct Expected {
    Shown shown;
    std::vector<int> contrasts;
    int df1;
    float voxels[3];
    float p;
};
// clang-format off
const std::vector<Expected> plain = {
    {Shown::T, {0}, 75, {6.27483f, 5.25960f, 5.35280f}, 2.051e-08f},
    {Shown::T, {1}, 75, {1.46269f, -0.37995f, -3.12521f}, 0.1477f},
    {Shown::T, {2}, 75, {4.24390f, 4.87262f, 7.20191f}, 6.213e-05f},
    {Shown::T, {3}, 75, {4.88715f, 3.12829f, 1.53285f}, 5.659e-06f},
    {Shown::T, {4}, 75, {1.95656f, 1.84876f, 0.69484f}, 0.05412f},
    {Shown::FOfContrast, {0}, 1, {39.37349f, 27.66338f, 28.65246f}, 2.051e-08f},
    {Shown::FOfContrast, {2}, 1, {18.01066f, 23.74242f, 51.86750f}, 6.213e-05f},
    {Shown::FOfContrast, {3}, 2, {19.77694f, 15.90900f, 26.54292f}, 1.265e-07f},
    {Shown::FOfContrast, {4}, 1, {3.82812f, 3.41792f, 0.48280f}, 0.05412f},
    {Shown::FOfSelected, {0, 1}, 2, {19.77694f, 15.90900f, 26.54292f}, 1.265e-07f},
    {Shown::FOfSelected, {2, 4}, 2, {11.44292f, 14.15407f, 26.55762f}, 4.6e-05f},
    {Shown::FOfSelected, {0, 1, 2, 4}, 3, {13.43116f, 10.68114f, 17.79635f}, 4.195e-07f},
};
const std::vector<Expected> whitened = {
    {Shown::T, {0}, 73, {6.86107f, 6.99513f, 7.57583f}, 1.883e-09f},
    {Shown::T, {1}, 73, {0.94141f, -2.17596f, -6.30939f}, 0.3496f},
    {Shown::T, {2}, 73, {5.19526f, 7.86942f, 11.75249f}, 1.784e-06f},
    {Shown::T, {3}, 73, {4.96055f, 3.17524f, 1.06835f}, 4.441e-06f},
    {Shown::T, {4}, 73, {1.61896f, 1.45284f, 0.25770f}, 0.1098f},
    {Shown::FOfContrast, {0}, 1, {47.07432f, 48.93178f, 57.39319f}, 1.883e-09f},
    {Shown::FOfContrast, {2}, 1, {26.99068f, 61.92785f, 138.12103f}, 1.784e-06f},
    {Shown::FOfContrast, {3}, 2, {24.19326f, 34.45660f, 69.09446f}, 8.691e-09f},
    {Shown::FOfContrast, {4}, 1, {2.62104f, 2.11074f, 0.06641f}, 0.1098f},
    {Shown::FOfSelected, {0, 1}, 2, {24.19326f, 34.45660f, 69.09446f}, 8.691e-09f},
    {Shown::FOfSelected, {2, 4}, 2, {15.70917f, 33.46193f, 70.07967f}, 2.118e-06f},
    {Shown::FOfSelected, {0, 1, 2, 4}, 3, {16.28912f, 23.25214f, 46.85486f}, 3.345e-08f},
};
// clang-format on

} // namespace

TEST(WholeRunMaps, AgreeWithSciPy) {
    for (const bool corrected : {false, true}) {
        const WholeRunModel model = fittedModel(corrected);
        for (const Expected& expected : corrected ? whitened : plain) {
            SCOPED_TRACE(testing::Message()
                         << corrected << int(expected.shown) << ' ' << expected.contrasts.front());
            const StatisticalMaps maps = mapsOf(model, select(expected.contrasts, expected.shown));
            const bool t = expected.shown == Shown::T;
            EXPECT_EQ(maps.MapType, t ? MapKind::T : MapKind::F);
            EXPECT_EQ(maps.MapDF1, expected.df1);
            EXPECT_EQ(maps.MapDF2, t ? 0 : model.degreesOfFreedom());
            EXPECT_EQ(maps.nrOfMapsToShow(false), 1);
            for (size_t voxel = 0; voxel < voxels; ++voxel)
                EXPECT_NEAR(maps.map(0)[voxel], expected.voxels[voxel],
                            2e-4f * std::max(1.0f, std::abs(expected.voxels[voxel])));
            const float first = maps.map(0)[0];
            const float probability =
                t ? tProbability(first, float(maps.MapDF1))
                  : fProbability(first, float(maps.MapDF1), float(maps.MapDF2));
            EXPECT_NEAR(probability, expected.p, 5e-3f * expected.p);
            EXPECT_EQ(maps.map(0)[voxels], 0.0f) << "R is 0";
        }
    }
}

TEST(WholeRunMaps, FOfSeveralContrastsAreMapsOfTheirOwn) {
    const WholeRunModel model = fittedModel(false);
    ContrastDefinitions contrasts = select({2, 3}, Shown::FOfContrast);
    contrasts.ContrastSelectionStates[2] = ContrastNegative;
    contrasts.ConjunctionAnalysis = true;
    StatisticalMaps maps = mapsOf(model, contrasts);
    EXPECT_EQ(maps.contrastOfMap, (std::vector<int>{2, 3}));
    EXPECT_EQ(maps.states, (std::vector<int>{1, 1})) << "F has no sign";
    EXPECT_EQ(maps.MapDF1, 0) << "1 and 2";
    EXPECT_NEAR(maps.map(0)[0], plain[6].voxels[0], 1e-2f);
    EXPECT_NEAR(maps.map(1)[0], plain[7].voxels[0], 1e-2f);
    contrasts.shownStatistic = Shown::FOfSelected;
    ASSERT_TRUE(computeContrastMaps(model, wholeImage(), contrasts, maps));
    EXPECT_EQ(maps.NrOfActiveContrasts, 1);
    EXPECT_EQ(values(maps, 1), std::vector<float>(maps.size.samples(), 0.0f)) << "out of use";
}

TEST(WholeRunMaps, ConjunctionAndOneSidedTesting) {
    const WholeRunModel model = fittedModel(false);
    ContrastDefinitions contrasts = select({0, 1, 2});
    contrasts.ConjunctionAnalysis = true;
    StatisticalMaps maps = mapsOf(model, contrasts);
    EXPECT_NEAR(maps.map(0)[0], plain[1].voxels[0], 1e-3f);
    EXPECT_EQ(maps.map(0)[1], 0.0f) << "of both signs";
    EXPECT_EQ(maps.states[0], ContrastBoth);
    contrasts.ConjunctionAnalysis = false;
    contrasts.oneSidedTesting = true;
    // Condition A is positive everywhere, B in the first voxel only.
    maps = mapsOf(model, contrasts);
    const bool shown[][3] = {{true, true, true}, {true, false, false}, {false, true, true}};
    for (int map = 0; map < 3; ++map)
        for (size_t voxel = 0; voxel < voxels; ++voxel)
            EXPECT_EQ(maps.map(map)[voxel] != 0.0f, shown[map][voxel]) << map << voxel;
    ContrastDefinitions both = select({0, 1}, Shown::FOfSelected);
    both.oneSidedTesting = true;
    maps = mapsOf(model, both);
    EXPECT_TRUE(maps.map(0)[0] > 0.0f && maps.map(0)[1] == 0.0f);
}

// Separate columns of two studies, A and B each, and one constant for both. In the second study B
// does not occur.
TEST(WholeRunMaps, AConditionThatIsMissingTakesItsContrastsFromTheStudy) {
    WholeRunDesign design = makeDesign();
    for (size_t t = 0; t < 2 * points; ++t) {
        float* x = design.GLMDesign.data() + t * p;
        const bool second = t >= points;
        const float a = x[0];
        const float b = x[1];
        const float row[p] = {second ? 0.0f : a, second ? 0.0f : b, second ? a : 0.0f, 0.0f, 1.0f};
        std::copy_n(row, p, x);
    }
    design.conditionOfColumn = {0, 1, 0, 1, -1};
    const WholeRunModel model = fittedModel(false, design);
    design.conditionOfColumn = {0, 1, -1, -1, -1};
    const WholeRunModel firstOnly = fittedModel(false, design);
    for (const Shown shown : {Shown::T, Shown::FOfContrast})
        EXPECT_EQ(values(mapsOf(model, select({2}, shown))),
                  values(mapsOf(firstOnly, select({2}, shown))));
    const StatisticalMaps ofA = mapsOf(model, select({0}, Shown::FOfContrast));
    EXPECT_EQ(ofA.MapDF1, 2) << "of A in both";
    // C is in no column: its contrast can't be estimated.
    EXPECT_EQ(mapsOf(model, select({4})).NrOfActiveContrasts, 0);
}

TEST(WholeRunMaps, FIsExactWhereTheColumnsThatStayAreNearlyEqual) {
    WholeRunDesign design = makeDesign();
    for (size_t t = 0; t < 2 * points; ++t)
        design.GLMDesign[t * p + 1] = design.GLMDesign[t * p] + design.GLMDesign[t * p + 1] / 512;
    const WholeRunModel model = fittedModel(false, design);
    ContrastDefinitions contrasts = select({4});
    contrasts.ContrastWeights[4] = {0, 0, 1};
    const float t = mapsOf(model, contrasts).map(0)[0];
    contrasts.shownStatistic = Shown::FOfContrast;
    EXPECT_NEAR(mapsOf(model, contrasts).map(0)[0], t * t, 2e-4f * t * t);
}

TEST(WholeRunMaps, AreZeroWhereNothingCanBeTested) {
    constexpr float nan = std::numeric_limits<float>::quiet_NaN();
    for (const Shown shown : {Shown::T, Shown::FOfContrast}) {
        WholeRunModel model = fittedModel(false);
        BrainMask mask{{1, 0, 1, 1, 1}, {{0, 1}, {2, 3}}};
        model.row(0)[0] = -0.5f;
        model.row(2)[2] = nan;
        EXPECT_EQ(values(mapsOf(model, select({0}, shown), mask)), std::vector<float>(5, 0.0f));
        model = fittedModel(false);
        for (size_t t = 0; t < 2 * points; ++t) // the same condition under two names
            model.GLMDesign[t * p + 1] = model.GLMDesign[t * p];
        model.rank = 4;
        const StatisticalMaps maps = mapsOf(model, select({1}, Shown::FOfContrast));
        EXPECT_EQ(values(maps), std::vector<float>(5, 0.0f));
        EXPECT_EQ(maps.MapDF1, 0);
        // The data tell what both do together, and not what each does.
        for (const int contrast : {1, 2})
            EXPECT_EQ(values(mapsOf(model, select({contrast}))), std::vector<float>(5, 0.0f));
        EXPECT_NE(values(mapsOf(model, select({3})))[0], 0.0f);
        model.GLMDesign[p - 1] = nan;
        EXPECT_EQ(values(mapsOf(model, select({0}, Shown::FOfContrast))), values(maps));

        ContrastDefinitions contrasts = select({0});
        StatisticalMaps none;
        mask.voxels.pop_back();
        EXPECT_FALSE(computeContrastMaps(model, mask, contrasts, none));
        EXPECT_FALSE(computeContrastMaps(WholeRunModel(), wholeImage(), contrasts, none));
    }
}
