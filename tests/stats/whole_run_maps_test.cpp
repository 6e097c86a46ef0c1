// Maps of a fitted model against SciPy's, and where they are 0.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/whole_run_maps.h"

#include "stats/contrasts.h"
#include "stats/incremental_glm.h"
#include "stats/statistical_maps.h"
#include "stats/thresholds.h"
#include "stats/whole_run_glm.h"
#include "support/expected_table.h"
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

/// Written by make_expected_maps.py.
constexpr const char* table = "stats/expected_maps.tsv";

/// Three conditions and a constant for each study.
WholeRunDesign makeDesign() {
    WholeRunDesign design;
    design.studies.assign(2, {points, "", "", 1});
    design.predictors.resize(p);
    design.conditionOfColumn = {0, 1, 2, -1, -1};
    design.GLMDesign = expectedNumbers<float>(table, "design");
    return design;
}

/// Point by point; further voxels are 0.
std::vector<int16_t> allSamples() {
    std::vector<int16_t> all(2 * points * imageSize.samples());
    for (size_t voxel = 0; voxel < voxels; ++voxel)
        for (size_t t = 0; const auto sample :
                           expectedNumbers<int16_t>(table, "samples " + QByteArray::number(voxel)))
            all[t++ * imageSize.samples() + voxel] = sample;
    return all;
}

struct OneSlice : SliceSource {
    std::vector<int16_t> samples = allSamples();
    bool loadSlice(int /*slice*/, std::span<const int16_t*> times) override {
        for (size_t t = 0; t < times.size(); ++t)
            times[t] = samples.data() + t * imageSize.samples();
        return true;
    }
};

WholeRunModel fittedModel(bool corrected, WholeRunDesign design = makeDesign()) {
    WholeRunModel model;
    design.CorrectSerialCorrelations = corrected;
    OneSlice samples;
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

} // namespace

TEST(WholeRunMaps, AgreeWithSciPy) {
    const WholeRunModel models[] = {fittedModel(false), fittedModel(true)};
    for (const Cells& cells : expectedLines(table, "map")) {
        SCOPED_TRACE(cells.join('\t').toStdString());
        const WholeRunModel& model = models[cells[0].toInt()];
        const auto shown = Shown(cells[1].toInt());
        const StatisticalMaps maps =
            mapsOf(model, select(numbersOf<int>(cells[2].split(' ')), shown));
        const bool t = shown == Shown::T;
        EXPECT_EQ(maps.MapType, t ? MapKind::T : MapKind::F);
        EXPECT_EQ(maps.MapDF1, cells[3].toInt());
        EXPECT_EQ(maps.MapDF2, t ? 0 : model.degreesOfFreedom());
        EXPECT_EQ(maps.nrOfMapsToShow(false), 1);
        const std::vector<double> exact = numbersOf(cells.mid(4));
        for (size_t voxel = 0; voxel < voxels; ++voxel)
            EXPECT_NEAR(maps.map(0)[voxel], exact[voxel],
                        2e-4 * std::max(1.0, std::abs(exact[voxel])));
        const float first = maps.map(0)[0];
        const float probability = t ? tProbability(first, float(maps.MapDF1))
                                    : fProbability(first, float(maps.MapDF1), float(maps.MapDF2));
        EXPECT_NEAR(probability, exact[voxels], 5e-3 * exact[voxels]);
        EXPECT_EQ(maps.map(0)[voxels], 0.0f) << "R is 0";
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
    EXPECT_NEAR(maps.map(0)[0], 18.01066, 1e-2);
    EXPECT_NEAR(maps.map(1)[0], 19.77694, 1e-2);
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
    EXPECT_NEAR(maps.map(0)[0], 1.46269, 1e-3);
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
    const std::vector<float> zeros(imageSize.samples(), 0.0f);
    BrainMask mask{{1, 0, 1, 1, 1}, {{0, 1}, {2, 3}}};
    for (const Shown shown : {Shown::T, Shown::FOfContrast}) {
        WholeRunModel model = fittedModel(false);
        model.row(0)[0] = -0.5f;
        model.row(2)[2] = nan;
        EXPECT_EQ(values(mapsOf(model, select({0}, shown), mask)), zeros);
    }
    WholeRunModel model = fittedModel(false);
    for (size_t t = 0; t < 2 * points; ++t) // the same condition under two names
        model.GLMDesign[t * p + 1] = model.GLMDesign[t * p];
    model.rank = 4;
    EXPECT_EQ(mapsOf(model, select({1}, Shown::FOfContrast)).MapDF1, 0);
    EXPECT_EQ(values(mapsOf(model, select({1}, Shown::FOfContrast))), zeros);
    // The data tell what both do together, and not what each does.
    for (const int contrast : {1, 2})
        EXPECT_EQ(values(mapsOf(model, select({contrast}))), zeros);
    EXPECT_NE(values(mapsOf(model, select({3})))[0], 0.0f);
    model.GLMDesign[p - 1] = nan;
    EXPECT_EQ(values(mapsOf(model, select({0}, Shown::FOfContrast))), zeros);

    ContrastDefinitions contrasts = select({0});
    StatisticalMaps none;
    mask.voxels.pop_back();
    EXPECT_FALSE(computeContrastMaps(model, mask, contrasts, none));
    EXPECT_FALSE(computeContrastMaps(WholeRunModel(), wholeImage(), contrasts, none));
}
