// Automatic contrasts, their weights, and the colours of the overlay.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/contrasts.h"
#include "stats/design_matrix.h"
#include "stats/maps_in_use.h"
#include "stats/overlay_colors.h"

namespace {

/// Conditions Rest (the baseline), A, B, ... and a constant.
DesignMatrix designOf(const QStringList& conditions) {
    DesignMatrix design;
    design.ContrastPredictorNames = conditions;
    design.NrOfContrastPredictors = int(conditions.size());
    design.NrOfConditionPredictors = int(conditions.size()) - 1;
    design.NrOfConfoundPredictors = 1;
    design.NrOfPredictors = int(conditions.size());
    for (int i = 0; i < conditions.size(); ++i)
        design.ContrastPredictorColors.push_back({100 * i, 10, 255});
    return design;
}

ContrastDefinitions generated(const DesignMatrix& design, int level) {
    ContrastDefinitions contrasts;
    contrasts.BaselinePosInProtocol = 3;
    generateContrasts(contrasts, design, level);
    return contrasts;
}

TEST(AutomaticContrasts, CompareConditionsWithBaselineAndEachOther) {
    const ContrastDefinitions contrasts = generated(designOf({"Rest", "A", "B", "C"}), 2);
    EXPECT_EQ(contrasts.ContrastNames, QStringList({"A vs. Rest", "B vs. Rest", "C vs. Rest",
                                                    "B vs. A", "C vs. A", "C vs. B"}));
    EXPECT_EQ(contrasts.ContrastValues[4], std::vector<int>({0, -1, 0, 1}));
    EXPECT_EQ(contrasts.ContrastWeights[4], std::vector<int>({-1, 0, 1, 0}));
    EXPECT_EQ(contrasts.ContrastSelectionStates, std::vector<int>({1, 1, 1, 0, 0, 0}));
    EXPECT_EQ(contrasts.ContrastColors[3], (RgbColor{255, 20, 255}));
    EXPECT_EQ(contrasts.BaselinePosInProtocol, 1);
    EXPECT_EQ(generated(designOf({"Rest", "A", "B"}), 1).NrOfContrasts, 2);
}

TEST(ShownStatistics, OfOneContrastSelectItAndExcludeTheConjunction) {
    ContrastDefinitions contrasts = generated(designOf({"Rest", "A", "B"}), 1);
    ASSERT_TRUE(setConjunction(contrasts, true));
    EXPECT_FALSE(showStatistic(contrasts, ShownStatistic::FOfContrast, 2)) << "there are two";
    EXPECT_TRUE(showStatistic(contrasts, ShownStatistic::T, -1));
    EXPECT_TRUE(contrasts.ConjunctionAnalysis);
    EXPECT_TRUE(showStatistic(contrasts, ShownStatistic::FOfSelected, -1));
    EXPECT_FALSE(contrasts.ConjunctionAnalysis || setConjunction(contrasts, true));
    EXPECT_EQ(nrOfSelectedContrasts(contrasts), 2);
    EXPECT_TRUE(showStatistic(contrasts, ShownStatistic::FOfContrast, 1));
    EXPECT_EQ(contrasts.ContrastSelectionStates, (std::vector<int>{0, 1}));
}

TEST(OverlayTables, MixTheColoursOfTheShownMaps) {
    ContrastDefinitions contrasts;
    contrasts.ContrastColors = {{0, 0, 255}, {3, 101, 0}, {0, 200, 6}, {255, 0, 1}};
    OverlayColors colors;
    StatisticalMaps maps = mapsInUse(1, 1, 1, 4);
    maps.contrastOfMap = {3, 2, 1, 0};
    updateOverlayColors(colors, contrasts, maps, false);
    const std::pair<size_t, RgbColor> mixtures[] = {
        {4, {129, 50, 0}}, {7, {0, 0, 255}}, {14, {64, 75, 65}}}; // means, cut to whole numbers
    for (const auto& [entry, color] : mixtures)
        EXPECT_EQ(colors.active[entry], color) << entry;

    // With three maps entries from 7 on keep their values from the earlier contrasts.
    contrasts.ContrastColors[0] = {9, 9, 9};
    updateOverlayColors(colors, contrasts, mapsInUse(1, 1, 1, 3), false);
    EXPECT_EQ(colors.active[0], (RgbColor{9, 9, 9}));
    EXPECT_EQ(colors.active[7], (RgbColor{0, 0, 255}));

    updateOverlayColors(colors, contrasts, mapsInUse(1, 1, 1, 3), true);
    EXPECT_EQ(colors.active, significanceColors());
}

} // namespace
