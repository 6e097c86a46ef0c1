// Automatic contrasts, their weights, selection, and the colours of the overlay.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/contrasts.h"
#include "stats/design_matrix.h"
#include "stats/overlay_colors.h"

#include <gtest/gtest.h>

namespace {

using Rows = std::vector<std::vector<int>>;

/// Conditions Rest, A, B, ... of which Rest is the baseline, with a constant behind them.
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

TEST(AutomaticContrasts, CompareConditionsWithBaselineAndEachOther) {
    const DesignMatrix design = designOf({"Rest", "A", "B", "C"});
    ContrastDefinitions contrasts;
    contrasts.BaselinePosInProtocol = 3;
    generateContrasts(contrasts, design, 2);
    EXPECT_EQ(contrasts.ContrastNames, QStringList({"A vs. Rest", "B vs. Rest", "C vs. Rest",
                                                    "B vs. A", "C vs. A", "C vs. B"}));
    EXPECT_EQ(contrasts.ContrastValues[1], std::vector<int>({-1, 0, 1, 0}));
    EXPECT_EQ(contrasts.ContrastValues[4], std::vector<int>({0, -1, 0, 1}));
    EXPECT_EQ(contrasts.ContrastWeights, (Rows{{1, 0, 0, 0},
                                               {0, 1, 0, 0},
                                               {0, 0, 1, 0},
                                               {-1, 1, 0, 0},
                                               {-1, 0, 1, 0},
                                               {0, -1, 1, 0}}));
    EXPECT_EQ(contrasts.ContrastSelectionStates, std::vector<int>({1, 1, 1, 0, 0, 0}));
    EXPECT_EQ(contrasts.ContrastColors[1], (RgbColor{200, 10, 255}));
    EXPECT_EQ(contrasts.ContrastColors[3], (RgbColor{255, 20, 255}));
    EXPECT_EQ(contrasts.BaselinePosInProtocol, 1);
}

TEST(AutomaticContrasts, FollowTheLevelAndTheNumberOfConditions) {
    struct Case {
        QStringList conditions;
        int level;
        int expected;
    };
    const Case cases[] = {{{"Rest"}, 2, 0},           {{}, 2, 0},
                          {{"Rest", "A"}, 2, 1},      {{"Rest", "A", "B"}, 0, 0},
                          {{"Rest", "A", "B"}, 1, 2}, {{"Rest", "A", "B"}, 3, 2}};
    for (const Case& item : cases) {
        ContrastDefinitions contrasts;
        generateContrasts(contrasts, designOf(item.conditions), item.level);
        EXPECT_EQ(contrasts.NrOfContrasts, item.expected);
        EXPECT_EQ(int(contrasts.ContrastWeights.size()), item.expected);
    }
}

TEST(AutomaticContrasts, LeaveOutConditionsThatAFullDesignHasNoColumnFor) {
    DesignMatrix design = designOf({"Rest", "A", "B", "C"});
    design.NrOfConditionPredictors = 2; // columns A, B, then confounds
    ContrastDefinitions contrasts;
    generateContrasts(contrasts, design, 2);
    EXPECT_EQ(contrasts.ContrastNames, QStringList({"A vs. Rest", "B vs. Rest", "B vs. A"}));
    contrasts.ContrastValues = {{-1, 0, 0, 1}, {0, -1, 0, 1}, {-1, 0, 1, 0}};
    rebuildContrastWeights(contrasts, design);
    EXPECT_EQ(contrasts.ContrastWeights, (Rows{{0, 0, 0, 0}, {0, 0, 0, 0}, {0, 1, 0, 0}}));
}

TEST(Selection, TogglesBitsAndAllowsFourContrasts) {
    const int positive[] = {1, 0, 3, 2};
    const int negative[] = {2, 3, 0, 1};
    for (int state = 0; state < 4; ++state) {
        ContrastDefinitions contrasts;
        contrasts.ContrastSelectionStates = {state, state};
        EXPECT_TRUE(toggleContrast(contrasts, 0, ContrastPositive));
        EXPECT_TRUE(toggleContrast(contrasts, 1, ContrastNegative));
        EXPECT_EQ(contrasts.ContrastSelectionStates,
                  std::vector<int>({positive[state], negative[state]}));
    }
    ContrastDefinitions full;
    full.ContrastSelectionStates = {1, 2, 3, 1, 0};
    EXPECT_FALSE(toggleContrast(full, 4, ContrastNegative));
    EXPECT_FALSE(toggleContrast(full, 5, ContrastPositive));
    EXPECT_FALSE(toggleContrast(full, -1, ContrastPositive));
    EXPECT_TRUE(toggleContrast(full, 0, ContrastNegative));
    EXPECT_EQ(full.ContrastSelectionStates, std::vector<int>({3, 2, 3, 1, 0}));
}

TEST(Selection, ConjunctionNeedsTwoContrasts) {
    ContrastDefinitions contrasts;
    contrasts.ContrastSelectionStates = {1, 0};
    EXPECT_FALSE(setConjunction(contrasts, true));
    EXPECT_FALSE(contrasts.ConjunctionAnalysis);
    contrasts.ContrastSelectionStates = {1, 2};
    EXPECT_TRUE(setConjunction(contrasts, true));
    EXPECT_TRUE(contrasts.ConjunctionAnalysis);
    EXPECT_TRUE(setConjunction(contrasts, false));
}

/// Maps of one voxel for `count` active contrasts, of which the last comes first.
StatisticalMaps mapsInUse(int count) {
    StatisticalMaps maps;
    maps.sizeX = maps.sizeY = maps.nrOfSlices = 1;
    EXPECT_TRUE(maps.allocateMaps(count));
    maps.NrOfActiveContrasts = count;
    for (int i = 0; i < count; ++i) {
        maps.states.push_back(1);
        maps.contrastOfMap.push_back(count - 1 - i);
    }
    return maps;
}

TEST(OverlayTables, MixTheColoursOfTheShownMaps) {
    ContrastDefinitions contrasts;
    contrasts.ContrastColors = {{0, 0, 255}, {3, 101, 0}, {0, 200, 6}, {255, 0, 1}};
    OverlayColors colors;
    updateOverlayColors(colors, contrasts, mapsInUse(4), false);
    const OverlayColorTable& table = colors.active;
    EXPECT_EQ(table[0], (RgbColor{255, 0, 1}));
    EXPECT_EQ(table[2], (RgbColor{255, 255, 0}));
    EXPECT_EQ(table[4], (RgbColor{129, 50, 0})); // 258/2, 101/2, 1/2
    EXPECT_EQ(table[6], (RgbColor{86, 100, 2})); // 258/3, 301/3, 7/3
    EXPECT_EQ(table[7], (RgbColor{0, 0, 255}));
    EXPECT_EQ(table[10], (RgbColor{1, 50, 127}));
    EXPECT_EQ(table[14], (RgbColor{64, 75, 65})); // 258/4, 301/4, 262/4
    EXPECT_EQ(table[15], significanceColors()[15]);

    // With three maps entry 7 and those behind it keep what the earlier contrasts left.
    contrasts.ContrastColors[2] = {9, 9, 9};
    updateOverlayColors(colors, contrasts, mapsInUse(3), false);
    EXPECT_EQ(colors.active[0], (RgbColor{9, 9, 9}));
    EXPECT_EQ(colors.active[7], (RgbColor{0, 0, 255}));

    updateOverlayColors(colors, contrasts, mapsInUse(3), true);
    EXPECT_EQ(colors.active, significanceColors());
    updateOverlayColors(colors, contrasts, mapsInUse(0), false);
    EXPECT_EQ(colors.active, significanceColors());
    EXPECT_EQ(colors.active[3], (RgbColor{255, 135, 0}));
    EXPECT_EQ(colors.active[19], (RgbColor{0, 255, 75}));
}

} // namespace
