// Recorded runs against the table of make_feedback_expected.py, and what that table doesn't have.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "feedback/feedback_levels.h"
#include "support/files.h"

#include <QList>
#include <cmath>
#include <limits>
#include <map>

namespace {

using Cells = QList<QByteArray>;

const std::map<QByteArray, int FeedbackChoices::*> numbers = {
    {"roiMode", &FeedbackChoices::roiMode},
    {"NrOfPastValues", &FeedbackChoices::NrOfPastValues},
    {"DisplayBaseLevel", &FeedbackChoices::DisplayBaseLevel},
    {"NoFbCondition", &FeedbackChoices::NoFbCondition},
    {"NoFbStartShift", &FeedbackChoices::NoFbStartShift},
    {"NoFbStopShift", &FeedbackChoices::NoFbStopShift},
    {"BaselineStartShift", &FeedbackChoices::BaselineStartShift},
    {"BaselineEndShift", &FeedbackChoices::BaselineEndShift}};
const std::map<QByteArray, bool FeedbackChoices::*> flags = {
    {"VisualizeROIs", &FeedbackChoices::VisualizeROIs},
    {"SetToMaxValue", &FeedbackChoices::SetToMaxValue},
    {"UseTCGLMB0ForBaseline", &FeedbackChoices::UseTCGLMB0ForBaseline}};

/// A run whose curves grow volume by volume.
struct RecordedRun {
    RecordedRun(int nrOfVolumes, int nrOfRegions)
        : curves(size_t(nrOfRegions)), signals{.nrOfVolumes = nrOfVolumes,
                                               .constants = std::vector<float>(3),
                                               .tables = tables} {
        choices.roiMode = useROI1;
    }
    RecordedRun(const RecordedRun&) = delete;

    const FeedbackValues& update(int volume) {
        signals.currentVolume = volume;
        signals.curves.assign(curves.begin(), curves.end());
        return levels.update(signals, choices);
    }
    void buildTables(float TR) {
        if (!tables.VolumeTablesReady)
            buildVolumeTables(tables, protocol, signals.nrOfVolumes, TR);
    }
    /// Adds `values` to the first region and returns the last level.
    int pass(const std::vector<float>& values) {
        for (const float value : values) {
            curves[0].push_back(value);
            update(int(curves[0].size()) - 1);
        }
        return levels.values().FbLevel1;
    }

    StimulationProtocol protocol;
    VolumeTables tables;
    std::vector<std::vector<float>> curves;
    FeedbackSignals signals;
    FeedbackChoices choices;
    FeedbackLevels levels;
};

void addCondition(StimulationProtocol& protocol, const Cells& cells) {
    ProtocolCondition condition;
    condition.name = cells[1];
    for (qsizetype i = 2; i + 1 < cells.size(); i += 2) {
        condition.from[size_t(condition.nrOfIntervals)] = cells[i].toInt();
        condition.to[size_t(condition.nrOfIntervals++)] = cells[i + 1].toInt();
    }
    protocol.conditions.push_back(condition);
}

void choose(FeedbackChoices& choices, const QByteArray& name, const QByteArray& value) {
    if (numbers.contains(name))
        choices.*numbers.at(name) = value.toInt();
    else if (flags.contains(name))
        choices.*flags.at(name) = value == "1";
    else if (name == "type")
        choices.type = FeedbackType(value.toInt());
    else
        choices.MaxPSC.at(size_t(name.back() - '1')) = value.toFloat();
}

void expectRow(const RecordedRun& run, const Cells& expected) {
    static const char* const sources[] = {"none", "current", "block", "model"};
    const FeedbackValues& values = run.levels.values();
    EXPECT_EQ(values.computed, run.choices.type != FeedbackType::TimeCourse);
    EXPECT_FALSE(values.classifier);
    EXPECT_EQ(values.noFeedback, expected[2] == "1");
    EXPECT_EQ(values.FbLevel1, expected[3].toInt());
    EXPECT_EQ(values.FbLevel2, expected[4].toInt());
    EXPECT_EQ(values.TargetLevel, expected[6].toInt());
    EXPECT_EQ(values.TargetLevel2, expected[7].toInt());
    EXPECT_STREQ(sources[int(values.source)], expected[10]);
    const std::array<float, 3>& maxima = run.choices.MaxPSC;
    const std::pair<float, qsizetype> reals[] = {{values.CurValue1, 0},     {values.CurValue2, 1},
                                                 {values.RelativeLevel, 5}, {values.Baseline1, 8},
                                                 {values.Baseline2, 9},     {maxima[0], 11},
                                                 {maxima[1], 12},           {maxima[2], 13}};
    for (const auto& [value, column] : reals) {
        const float wanted = expected[column].toFloat();
        EXPECT_NEAR(value, wanted, 1e-5f * std::abs(wanted) + 1e-7f) << column;
    }
}

void passVolume(RecordedRun& run, const Cells& cells, float TR) {
    run.buildTables(TR);
    const qsizetype regions = cells.indexOf("|");
    for (qsizetype i = 0; i < regions; ++i)
        run.curves[size_t(i)].push_back(cells[i].toFloat());
    const int volume = int(run.curves[0].size()) - 1;
    const bool last = volume == run.signals.nrOfVolumes - 1;
    for (const int shownAt : {volume, volume + (last ? 3 : 0)}) {
        ASSERT_EQ(run.update(shownAt).live, cells.size() > regions + 1);
        if (run.levels.values().live)
            expectRow(run, cells.mid(regions + 1));
    }
}

} // namespace

TEST(FeedbackLevels, RecordedRunsGiveTheValuesOfTheFormulas) {
    const QByteArray table = contentOf(VELO_SOURCE_DIR "/tests/feedback/expected_feedback.tsv");
    std::unique_ptr<RecordedRun> run;
    QByteArray name;
    float TR = 0.0f;
    int runs = 0;
    for (const QByteArray& line : table.split('\n')) {
        const Cells cells = line.split('\t');
        if (cells[0] == "run") {
            name = cells[1];
            run = std::make_unique<RecordedRun>(cells[2].toInt(), cells[3].toInt());
            TR = cells[4].toFloat();
            run->protocol.resolutionOfTime = ResolutionOfTime(cells[5].toInt());
            run->signals.hasConfounds = cells[6] == "1";
            run->tables.NrOfTargetLevels = cells[7].toInt();
            ++runs;
        } else if (cells[0] == "condition") {
            addCondition(run->protocol, cells);
        } else if (cells[0] == "choice") {
            choose(run->choices, cells[2], cells[3]);
        } else if (cells[0] == "constant") {
            run->signals.constants.at(cells[2].toUInt() - 1) = cells[3].toFloat();
        } else if (cells.contains("|")) {
            SCOPED_TRACE((name + " " + QByteArray::number(run->curves[0].size())).toStdString());
            ASSERT_NO_FATAL_FAILURE(passVolume(*run, cells, TR));
        }
        ASSERT_FALSE(testing::Test::HasFailure());
    }
    EXPECT_EQ(runs, 38);
}

TEST(FeedbackLevels, NothingIsShownWithoutRegionsOrBeforeVolumeTen) {
    RecordedRun none(30, 0);
    EXPECT_FALSE(none.update(20).live);
    RecordedRun shortRun(1, 1);
    EXPECT_EQ(shortRun.update(10).volume, 0); // the curve is shorter than it should be
    RecordedRun empty(0, 1);
    EXPECT_FALSE(empty.update(10).live);
}

TEST(FeedbackLevels, ANewRunBeginsWithNothing) {
    RecordedRun run(40, 1);
    run.choices.BaselineEndShift = 6;
    run.pass(std::vector<float>(12, 100.0f));
    EXPECT_EQ(run.pass({101.0f}), 5);
    EXPECT_FLOAT_EQ(run.levels.values().RelativeLevel, 0.5f);
    run.levels.forgetBaselines();
    EXPECT_EQ(run.levels.values().source, BaselineSource::None);
    EXPECT_EQ(run.update(12).FbLevel1, 0);
    run.levels.restart();
    EXPECT_EQ(run.levels.values().FbLevel1, 4);
    EXPECT_FALSE(run.levels.values().live);
}

TEST(FeedbackLevels, SignalsOutOfAllBoundsGiveLevelZero) {
    constexpr float none = std::numeric_limits<float>::quiet_NaN();
    constexpr float infinite = std::numeric_limits<float>::infinity();
    for (const float value : {none, infinite, -infinite}) {
        RecordedRun later(40, 1);
        later.choices.BaselineEndShift = 6;
        later.choices.SetToMaxValue = true;
        later.pass(std::vector<float>(12, 100.0f));
        EXPECT_EQ(later.pass({value}), 0);
        EXPECT_FLOAT_EQ(later.choices.MaxPSC[0], 2.0f);
        RecordedRun baseline(40, 1);
        baseline.choices.BaselineEndShift = 6;
        baseline.pass(std::vector<float>(11, 100.0f));
        EXPECT_EQ(baseline.pass({value, 101.0f}), 0);
    }
}

namespace {

struct ScriptedClassifier : ClassifierOutput {
    bool isPredicting() const override { return true; }
    int nrOfClasses() const override { return classes; }
    bool currentOutput(std::span<float> values) const override {
        pairs = values.size();
        if (!values.empty())
            values[0] = value;
        if (values.size() > 1)
            values[1] = -1.5f;
        return succeeds;
    }
    int classes = 2;
    float value = 0.0f;
    bool succeeds = true;
    mutable size_t pairs = 0;
};

} // namespace

TEST(FeedbackLevels, TheClassifiersFirstPairFillsTheScale) {
    struct {
        int classes;
        float value;
        bool succeeds;
        int baseLevel;
        size_t pairs;
        int level;
    } const cases[] = {{2, 1.5f, true, 5, 1, 5},  {2, -0.9f, true, 5, 1, -3},
                       {4, 0.75f, true, 0, 6, 5}, {3, 1.5f, true, 10, 3, 10},
                       {2, 1.5f, false, 5, 1, 0}, {1, 1.5f, true, 5, 0, 0},
                       {0, 1.5f, true, 5, 0, 0},  {1 << 30, 1.5f, true, 5, 0, 0},
                       {2, NAN, true, 5, 1, 0},   {2, 9.0f, true, 12, 1, 60}};
    for (const auto& each : cases) {
        ScriptedClassifier classifier;
        classifier.classes = each.classes;
        classifier.value = each.value;
        classifier.succeeds = each.succeeds;
        FeedbackChoices choices;
        choices.DisplayBaseLevel = each.baseLevel;
        FeedbackLevels levels;
        EXPECT_EQ(levels.update(&classifier, choices, 3).FbLevel1, each.level);
        EXPECT_EQ(classifier.pairs, each.pairs);
        const FeedbackValues& values = levels.values();
        EXPECT_TRUE(values.live && values.classifier && values.computed);
        EXPECT_TRUE(each.level == 0 || values.CurValue1 == each.value);
    }
    FeedbackLevels levels;
    EXPECT_EQ(levels.update(nullptr, FeedbackChoices(), 3).FbLevel1, 0);
}

TEST(FeedbackChoices, LevelsRoundByTheShiftOfNegativeValues) {
    constexpr double infinite = std::numeric_limits<double>::infinity();
    constexpr std::pair<double, int> cases[] = {
        {2.5, 3},    {2.49, 2},     {0.5, 1}, {-0.5, 0},           {-0.51, -1},          {-2.5, -2},
        {-2.51, -3}, {infinite, 0}, {NAN, 0}, {1e300, 1000000000}, {-1e300, -1000000000}};
    for (const auto& [value, level] : cases)
        EXPECT_EQ(roundedLevel(value), level) << value;
}

TEST(FeedbackChoices, ModesNeedTheirRegions) {
    const std::array<int, nrOfROIModes> needed = {1, 2, 3, 2, 3, 3, 3};
    for (int regions = 0; regions <= 4; ++regions)
        for (int mode = noROIMode; mode <= nrOfROIModes; ++mode) {
            const bool known = mode >= 0 && mode < nrOfROIModes;
            const bool available = known && regions >= needed[size_t(mode)];
            EXPECT_EQ(isModeAvailable(mode, regions), available) << mode << " " << regions;
            FeedbackChoices choices;
            choices.roiMode = mode;
            settleROIMode(choices, regions);
            EXPECT_EQ(choices.roiMode, available ? mode : regions > 0 ? useROI1 : noROIMode);
        }
}

TEST(FeedbackChoices, FieldsShowAndStoreTheMaximaOfTheMode) {
    struct {
        int mode;
        double first, second; ///< shown of 1, 2.507 and 300
        std::array<float, 3> stored;
    } const cases[] = {
        {useROI1, 1.0, 0.0, {7, 2.507f, 300}},         {useROI2, 2.51, 0.0, {1, 7, 300}},
        {useROI3, 100.0, 0.0, {1, 2.507f, 7}},         {useROI1And2, 1.0, 2.51, {7, 0.01f, 300}},
        {useROI1And3, 1.0, 100.0, {7, 2.507f, 0.01f}}, {useROI2And3, 2.51, 100.0, {1, 7, 0.01f}},
        {useROI1And2And3, 100.0, 0.0, {7, 7, 7}},      {noROIMode, 100.0, 0.0, {1, 2.507f, 300}}};
    for (const auto& each : cases) {
        FeedbackChoices choices;
        choices.roiMode = each.mode;
        choices.MaxPSC = {1.0f, 2.507f, 300.0f};
        EXPECT_DOUBLE_EQ(shownMaxima(choices).first, each.first) << each.mode;
        EXPECT_DOUBLE_EQ(shownMaxima(choices).second, each.second) << each.mode;
        storeMaxima(choices, {7.0, -3.0});
        EXPECT_EQ(choices.MaxPSC, each.stored) << each.mode;
    }
    EXPECT_EQ(asShown(NAN), smallestMaxPSC);
}

TEST(FeedbackChoices, ShiftsAreSixAndTwoSeconds) {
    constexpr std::tuple<float, int, int> cases[] = {
        {2000.0f, 3, 1}, {1500.0f, 4, 1}, {1250.0f, 5, 2}, {800.0f, 8, 3},
        {4000.0f, 2, 1}, {0.0f, 9, 9},    {NAN, 9, 9},     {-2000.0f, 9, 9}};
    for (const auto& [TR, start, end] : cases) {
        FeedbackChoices choices{.NoFbStartShift = 9, .NoFbStopShift = 9};
        choices.BaselineStartShift = choices.BaselineEndShift = 9;
        setShiftsForTR(choices, TR);
        EXPECT_EQ(std::pair(choices.BaselineStartShift, choices.BaselineEndShift),
                  std::pair(start, end))
            << TR;
        EXPECT_EQ(std::pair(choices.NoFbStartShift, choices.NoFbStopShift), std::pair(start, end));
    }
}
