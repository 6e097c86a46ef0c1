// Delayed feedback: which trial is due, its estimate against a least-squares fit in NumPy, its
// line, and reading the protocol.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "feedback/delayed_feedback.h"

#include "support/conditions.h"
#include "support/files.h"
#include "support/scripted_messages.h"

#include <QTemporaryDir>

namespace {

std::vector<float> signal() {
    std::vector<float> curve;
    for (int t = 0; t < 60; ++t)
        curve.push_back(float(1000 + t * 7 % 5 + t * t / 9 % 3 + (t % 20 < 8 ? 0 : 6)));
    return curve;
}

} // namespace

// numpy.linalg.lstsq on [x, 1], with x the box convolved with gamma.pdf(t, 6) - gamma.pdf(t, 16) /
// 6 of SciPy at multiples of the TR, over the magnitude of its sum.
TEST(DelayedPercentChange, IsThatOfALeastSquaresFit) {
    struct Case {
        const char* name;
        int onset, baselineFrom, modulationFrom, modulationTo;
        float TR;
        int zeroAt; ///< a volume without a signal
        double expected;
    };
    const Case cases[] = {
        {"as at first", 28, -8, 0, 10, 2000.0f, -1, 0.522381312505819},
        {"another TR", 28, -8, 0, 10, 700.0f, -1, 0.6229701337063509},
        {"another window", 8, -3, 2, 9, 2000.0f, -1, 0.24102853836204316},
        {"from the onset's future", 28, 5, 10, 24, 2000.0f, -1, -0.3153304575037064},
        {"begins before the run", 3, -8, 0, 10, 2000.0f, -1, 0.6332366866649763},
        {"ends behind the run", 50, -8, 0, 14, 2000.0f, -1, 0.15164882352718773},
        {"a zero inside stays", 28, -8, 0, 10, 2000.0f, 25, 11.163334325544366},
        {"but is filled with the rest", 3, -8, 0, 10, 2000.0f, 5, 0.6337674771269133},
        {"no modulation in the window", 28, -8, 11, 10, 2000.0f, -1, 0.0},
        {"no window", 28, 11, 11, 10, 2000.0f, -1, 0.0}};
    for (const Case& test : cases) {
        std::vector<float> curve = signal();
        if (test.zeroAt >= 0)
            curve[size_t(test.zeroAt)] = 0.0f;
        const DelayedFeedbackSettings settings{.BaselineFrom = test.baselineFrom,
                                               .ModulationFrom = test.modulationFrom,
                                               .ModulationTo = test.modulationTo};
        EXPECT_NEAR(delayedPercentChange(settings, curve, test.onset, {}, test.TR), test.expected,
                    2e-6 * std::max(1.0, std::abs(test.expected)))
            << test.name;
    }
}

TEST(DelayedPercentChange, WithoutASignalThereIsNoEstimate) {
    EXPECT_EQ(delayedPercentChange({}, {}, 20, {}, 2000.0f), 0.0);
    for (const int onset : {30, 3, 2000000000})
        EXPECT_FALSE(std::isfinite(
            delayedPercentChange({}, std::vector<float>(60, 0.0f), onset, {}, 2000.0f)))
            << onset;
}

TEST(DueTrial, IsTheLatestAtExactlyTheVolumeOfItsUpdate) {
    StimulationProtocol protocol;
    addCondition(protocol, "Rest", {});
    addCondition(protocol, "Faces", {{3, 6}, {50, 53}, {20, 23}, {30, 33}, {20, 23}});
    struct Case {
        int update, skipped, volume;
        int trial; ///< -1 for none
        int onset;
    };
    const Case cases[] = {
        {8, 0, 11, 0, 3},   {8, 0, 10, -1, 0},                   // one write for each trial
        {8, 0, 12, -1, 0},  {8, 0, 28, 2, 20},                   // the first of two equal ones
        {8, 0, 58, 1, 50},  {8, 2, 56, 1, 48},                   // onsets less the skipped volumes
        {8, 5, 6, 0, -2},                                        // a trial before the run
        {12, 0, 32, -1, 0},                                      // the next one has begun
        {10, 0, 30, 2, 20}, {11, 0, 31, -1, 0},                  // an onset counts behind it only
        {0, 0, 20, -1, 0},  {1, 0, 21, 2, 20},  {8, 0, 1, -1, 0} // none has begun
    };
    for (const Case& test : cases) {
        const std::optional<DueTrial> due =
            dueTrial({.condition = 1, .UpdateFeedbackFile = test.update}, protocol, test.skipped,
                     test.volume);
        EXPECT_EQ(due ? due->index : -1, test.trial) << test.update << ' ' << test.volume;
        EXPECT_EQ(due ? due->onset : 0, test.onset) << test.update << ' ' << test.volume;
    }
    for (const int none : {-1, 0, 2})
        EXPECT_FALSE(dueTrial({.condition = none, .UpdateFeedbackFile = 8}, protocol, 0, 11));
    protocol.conditions[1].from = {-2147483647, 2147483647};
    EXPECT_FALSE(dueTrial({.condition = 1, .UpdateFeedbackFile = 8}, protocol, 2000000000, 11));
}

TEST(DelayedFeedbackSettings, TheWindowFollowsTheFirstInterval) {
    struct Case {
        int from, to;
        float TR;
        int modulationTo, update;
    };
    const Case cases[] = {{11, 20, 2000.0f, 14, 15},
                          {11, 20, 1600.0f, 15, 16},
                          {11, 20, 3000.0f, 13, 14},
                          {0, 40000, 2000.0f, 999, 999},
                          {1, -2000000000, 1e-30f, 999, 999},
                          {9, -9000, 2000.0f, -999, 0},
                          {11, 20, 0.0f, 10, 15},
                          {11, 20, float(NAN), 10, 15}};
    for (const Case& test : cases) {
        ProtocolCondition condition;
        DelayedFeedbackSettings settings;
        condition.from[0] = test.from;
        condition.to[0] = test.to;
        fitWindowToCondition(settings, condition, test.TR);
        EXPECT_EQ(settings, DelayedFeedbackSettings()) << "no interval";
        condition.nrOfIntervals = 1;
        fitWindowToCondition(settings, condition, test.TR);
        EXPECT_EQ(settings.ModulationTo, test.modulationTo) << test.to << ' ' << test.TR;
        EXPECT_EQ(settings.UpdateFeedbackFile, test.update) << test.to << ' ' << test.TR;
    }
}

TEST(DelayedFeedbackSettings, SayWhyTheyCannotBeUsed) {
    struct Case {
        DelayedFeedbackSettings settings;
        const char* fault; ///< a part of it; empty for none
    };
    const Case cases[] = {{{.ModulationFrom = -8, .ModulationTo = -8}, ""},
                          {{.ModulationFrom = -9}, "begin before the baseline"},
                          {{.ModulationFrom = 11}, "end before it begins"},
                          {{.ModulationTo = 15}, ""},
                          {{.ModulationTo = 16}, "end after the volume"}};
    for (const Case& test : cases) {
        const QString fault = delayedFeedbackFault(test.settings);
        EXPECT_TRUE(*test.fault ? fault.contains(test.fault) : fault.isEmpty())
            << fault.toStdString();
    }
    for (const char* name : {"", " ", ".", "..", "a/b", "a\\b"})
        EXPECT_TRUE(delayedFeedbackFault({.fileName = name}).contains("a name without a folder"))
            << name;
}

TEST(DelayedFeedbackLine, HasThreeRightAlignedFields) {
    EXPECT_EQ(delayedFeedbackLine(1, 5.25), "  1           5.25\n");
    EXPECT_EQ(delayedFeedbackLine(12, -1234567.0), " 12   -1.23457e+06\n");
    EXPECT_EQ(delayedFeedbackLine(1000, 0.0), "1000              0\n");
}

TEST(ReadProtocolForDelayedFeedback, TakesProtocolsInVolumesOnly) {
    const QTemporaryDir folder;
    const QString path = folder.filePath("a.prt");
    ScriptedMessages messages;
    StimulationProtocol protocol;
    messages.expectWarning("ERROR: Can not open protocol file: \"" + path + "\" !");
    EXPECT_FALSE(readProtocolForDelayedFeedback(path, protocol));
    const QByteArray rest =
        "Experiment: E\nBackgroundColor: 0 0 0\nTextColor: 9 9 9\n"
        "TimeCourseColor: 9 9 9\nTimeCourseThick: 3\nReferenceFuncColor: 8 8 8\n"
        "ReferenceFuncThick: 2\nNrOfConditions: 1\nFaces\n2\n4 6\n9 11\n"
        "Color: 255 0 0\n";
    const QByteArray version = "FileVersion: 2\nResolutionOfTime: ";
    messages.expectWarning(
        "This is a millisecond protocol - only volume-based protocols supported.");
    messages.expectWarning("ERROR: Protocol file \"" + path + "\" is damaged: *");
    for (const QByteArray& faulty : {version + "msec\n" + rest, version + "Volumes\nExperiment:"}) {
        writeFile(path, faulty);
        EXPECT_FALSE(readProtocolForDelayedFeedback(path, protocol));
        EXPECT_EQ(protocol.nrOfConditions(), 0);
    }
    for (const QByteArray& good : {rest, version + "volumes\n" + rest}) {
        writeFile(path, good);
        ASSERT_TRUE(readProtocolForDelayedFeedback(path, protocol));
        ASSERT_EQ(protocol.nrOfConditions(), 1);
        EXPECT_EQ(protocol.conditions[0].name, "Faces");
        EXPECT_EQ(protocol.conditions[0].nrOfIntervals, 2);
    }
}
