// Names, columns and growth of a run's design.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/design_matrix.h"

#include "support/conditions.h"
#include "support/files.h"
#include "support/scripted_messages.h"

#include <QTemporaryDir>

namespace {

StimulationProtocol threeConditions() {
    StimulationProtocol protocol;
    addCondition(protocol, "Rest", {{1, 5}});
    addCondition(protocol, "Left", {{0, 2}, {9, 99}});
    addCondition(protocol, "Right", {{4, 6}});
    protocol.conditions[1].color = {1, 2, 3};
    return protocol;
}

void buildNames(DesignMatrix& design, const DesignSource& source) {
    buildConditionPredictorNames(design, source);
    buildConfoundPredictorNames(design, source);
}

} // namespace

TEST(PredictorNames, SkipTheBaselineAtItsPosition) {
    const StimulationProtocol protocol = threeConditions();
    DesignMatrix design;
    buildNames(design, {.protocol = protocol, .BaselinePosInProtocol = 1});
    EXPECT_EQ(design.PredictorNames, (QStringList{"Left", "Right", "Constant", "Linear Trend"}));
    EXPECT_EQ(design.ContrastPredictorNames, (QStringList{"Rest", "Left", "Right"}));
    EXPECT_EQ(design.PredictorColors[0], (RgbColor{1, 2, 3}));
    EXPECT_EQ(design.PredictorColors[3], (RgbColor{128, 128, 128}));

    buildNames(design,
               {.protocol = protocol, .BaselinePosInProtocol = 0, .DriftConfoundPredictors = 0});
    EXPECT_EQ(design.ContrastPredictorNames, (QStringList{"Baseline+", "Rest", "Left", "Right"}));

    const StimulationProtocol none;
    buildNames(design, {.protocol = none, .DriftConfoundPredictors = 2});
    EXPECT_EQ(design.PredictorNames, (QStringList{"Constant", "DCT-1", "DCT-2"}));
    buildNames(design, {.protocol = none, .DriftConfoundPredictors = 2147483647});
    EXPECT_EQ(design.NrOfPredictors, 50);
}

TEST(PredictorNames, ConditionsBeyondTheTableAreLeftOutWithOneWarning) {
    StimulationProtocol protocol;
    for (int i = 0; i < 60; ++i)
        addCondition(protocol, QString("c%1").arg(i), {{i + 1, i + 1}});
    QTemporaryDir folder;
    ScriptedMessages messages;
    messages.expectWarning("WARNING: The protocol has more conditions than the design matrix has "
                           "columns; only the first 49 conditions are modelled.");
    messages.expectWarning("WARNING: The design matrix has no columns for 1 drift "
                           "predictors; only 0 are modelled.");
    DesignMatrix design;
    const DesignSource source{.protocol = protocol, .NrOfVolumes = 70};
    for (int repetition = 0; repetition < 2; ++repetition)
        buildNames(design, source);
    EXPECT_EQ(design.NrOfConditionPredictors, 49);
    EXPECT_EQ(design.PredictorNames.size(), 50);
    EXPECT_TRUE(createConditionPredictors(design, source));
    EXPECT_TRUE(createConfoundPredictors(design, source, folder.path()));
}

TEST(FillBoxCar, CutsIntervalsAndTakesTheWeightBelow) {
    const StimulationProtocol protocol = threeConditions();
    const DesignSource source{.protocol = protocol, .NrOfVolumes = 10};
    DesignMatrix design;
    design.ConditionWeights = {0.5f, -2.0f};
    std::vector<MillisecondInterval> intervals;
    const std::vector<float> expected[] = {{0.5f, 0.5f, 0.5f, 0.5f, 0.5f, 0, 0, 0, 0, 0},
                                           {0.5f, 0.5f, 0, 0, 0, 0, 0, 0, 0.5f, 0.5f}};
    for (const int condition : {0, 1}) {
        std::vector<float> column(10, 0.0f);
        fillBoxCar(design, source, condition, column, true, intervals);
        EXPECT_EQ(column, expected[condition]);
    }
}

TEST(FillBoxCar, MillisecondsAreListedAndReplacedByTheirEnd) {
    StimulationProtocol protocol;
    protocol.resolutionOfTime = ResolutionOfTime::Milliseconds;
    addCondition(protocol, "a", {{0, 500}, {100, 500}, {700, 900}});
    addCondition(protocol, "b", {{700, 900}, {0, 500}});
    DesignMatrix design;
    design.ConditionWeights = {0.2504f};
    const DesignSource source{.protocol = protocol, .NrOfVolumes = 3};
    std::vector<float> column(3, 7.0f);
    std::vector<MillisecondInterval> intervals;
    fillBoxCar(design, source, 0, column, false, intervals);
    ASSERT_EQ(intervals.size(), 2u);
    fillBoxCar(design, source, 1, column, true, intervals);
    ASSERT_EQ(intervals.size(), 3u);
    EXPECT_EQ(intervals[1].weight, 250);
    EXPECT_EQ(intervals[2].from, 0);
    EXPECT_EQ(column, std::vector<float>(3, 7.0f));
}

TEST(Design, ColumnsThatGrowWithTheirEventsAreThoseMadeAtOnce) {
    StimulationProtocol protocol;
    protocol.resolutionOfTime = ResolutionOfTime::Milliseconds;
    protocol.realTimeProtocolPath = "a.rtp";
    for (const char* name : {"Rest", "Left", "Right"})
        addCondition(protocol, name, {});
    DesignSource source{.protocol = protocol, .TR = 1000.0f, .NrOfVolumes = 30};
    DesignMatrix growing;
    const std::function<void()> steps[] = {
        [] {},
        [&] { protocol.addInterval(1, 2000, 1002000); },
        [&] { protocol.conditions[1].to[0] = 7000; },
        [&] {
            growing.ConditionWeights = std::vector{0.5f, 1.0f};
        },
        [&] { growing.hrf.timeToPeak = 5.0f; },
        [&] { source.TR = 1500.0f; },
        [&] { source.NrOfVolumes = 40; },
        [&] { source.BaselinePosInProtocol = 0; },
        [&] { source.BaselinePosInProtocol = 1; }, // its third column holds a constant meanwhile
        [&] { source.BaselinePosInProtocol = 0; },
        [&] { releasePredictorColumns(growing); }};
    QTemporaryDir folder;
    for (size_t step = 0; step < std::size(steps); ++step) {
        steps[step]();
        DesignMatrix fresh;
        fresh.ConditionWeights = growing.ConditionWeights;
        fresh.hrf = growing.hrf;
        for (DesignMatrix* design : {&growing, &fresh}) {
            buildNames(*design, source);
            ASSERT_TRUE(createConditionPredictors(*design, source));
            ASSERT_TRUE(createConfoundPredictors(*design, source, folder.path()));
        }
        for (size_t j = 0; j < size_t(fresh.NrOfPredictors); ++j)
            EXPECT_EQ(growing.PredictorColumns[j], fresh.PredictorColumns[j]) << step << ", " << j;
    }
}

TEST(Design, ConfoundsFollowTheirFormulasAndTheDesignIsWritten) {
    StimulationProtocol protocol = threeConditions();
    QTemporaryDir folder;
    for (const int drift : {1, 3}) {
        const DesignSource source{
            .protocol = protocol, .NrOfVolumes = 8, .DriftConfoundPredictors = drift};
        DesignMatrix design;
        buildNames(design, source);
        ASSERT_TRUE(createConditionPredictors(design, source));
        ASSERT_TRUE(createConfoundPredictors(design, source, folder.path()));
        for (size_t t = 0; t < 8; ++t)
            for (size_t c = 0; c <= size_t(drift); ++c) {
                const double cosine = std::cos(3.1425 * double(c) * double(t) / 8.0);
                EXPECT_NEAR(design.PredictorColumns[2 + c][t],
                            drift == 1 && c == 1 ? double(t) / 4.0 - 1.0 : cosine, 1e-6);
            }
    }
    EXPECT_TRUE(contentOf(folder.filePath("Realtime_DesignMatrix.txt"))
                    .startsWith("0.000000  0.000000  1.000000  1.000000  1.000000  1.000000  \n"));
}

TEST(Onsets, OrderColumnsAndSpaceTheGrowthOfTheModel) {
    DesignMatrix design;
    design.NrOfConditionPredictors = 5;
    const int none = DesignMatrix::noOnset;
    const std::vector<int> onsets = {20, 5, none, 5, 21};
    for (size_t j = 0; j < onsets.size(); ++j) {
        design.PredictorColumns[j].assign(40, 0.1f); // not above the limit
        if (onsets[j] != none)
            design.PredictorColumns[j][size_t(onsets[j])] = j == 1 ? -0.2f : 0.2f;
    }
    findPredictorOnsets(design, 40);
    EXPECT_EQ(design.PredictorOnsets, onsets);
    EXPECT_EQ(design.PredictorOrder, (std::vector<int>{1, 3, 0, 4, -1}));
    fillGLMStepVolumes(design);
    EXPECT_EQ(design.GLMStepVolumes, (std::vector<int>{11, 12, 20, 21, -1}));
}
