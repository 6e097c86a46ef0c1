// Made-up signals through the feedback of a planned run.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "feedback/dry_run.h"

#include <cmath>
#include <functional>
#include <gtest/gtest.h>
#include <numeric>

namespace {

constexpr float TR = 2000.0f;

/// Intervals of the task in volumes, from 1; what is between them is rest.
StimulationProtocol protocolOf(const std::vector<std::pair<int, int>>& tasks, bool milliseconds) {
    StimulationProtocol protocol;
    protocol.conditions.resize(2);
    protocol.conditions[0].name = "Rest";
    protocol.conditions[1].name = "Up_7";
    if (milliseconds)
        protocol.resolutionOfTime = ResolutionOfTime::Milliseconds;
    const int unit = milliseconds ? int(TR) : 1;
    for (const auto& [from, to] : tasks)
        EXPECT_TRUE(protocol.addInterval(1, from * unit, to * unit));
    return protocol;
}

FeedbackChoices choicesWith(const std::function<void(FeedbackChoices&)>& edit) {
    FeedbackChoices choices;
    setShiftsForTR(choices, TR); // 3 volumes and 1
    edit(choices);
    return choices;
}

} // namespace

TEST(DryRun, SaysFromWhichVolumeOnThereIsFeedbackAndWhyNotBefore) {
    const std::vector<std::pair<int, int>> blocks{{11, 20}, {31, 40}, {51, 60}};
    using Edit = void (*)(FeedbackChoices&);
    struct Case {
        const char* name;
        std::vector<std::pair<int, int>> tasks;
        int nrOfVolumes;
        int first; ///< from 0
        QString text;
        Edit edit = [](FeedbackChoices&) {};
    };
    const Edit suppressed = [](FeedbackChoices& c) { c.NoFbCondition = 0, c.NoFbStopShift = 2; };
    const Edit suppressedPair = [](FeedbackChoices& c) {
        c.NoFbCondition = 0, c.NoFbStopShift = 2;
        c.roiMode = useROI1And2, c.VisualizeROIs = true;
    };
    const Edit ofModel = [](FeedbackChoices& c) { c.UseTCGLMB0ForBaseline = true; };
    const Edit curve = [](FeedbackChoices& c) { c.type = FeedbackType::TimeCourse; };
    const Edit classifier = [](FeedbackChoices& c) { c.UseSVMOutput = true; };
    const Edit longShift = [](FeedbackChoices& c) { c.BaselineEndShift = 8; };
    const Edit blocked = [](FeedbackChoices& c) { c.BlockOutput = true; };
    const std::vector<Case> cases{
        {"the first block is never found", blocks, 70, 31, "first six volumes"},
        {"a later start", {{1, 6}, {17, 30}}, 70, 17, "volumes 7 to 16"},
        {"its end is not live", {{1, 6}, {8, 20}, {31, 40}}, 70, 31, "before the first"},
        {"5 volumes: 3 are left", {{1, 10}, {16, 25}, {36, 40}}, 70, 36, "fewer than 4"},
        {"6 volumes: 4 are left", {{1, 10}, {17, 25}}, 70, 17, "volumes 11 to 16"},
        {"hidden later", {{11, 20}, {31, 40}, {43, 50}}, 70, 31, "volume 44 on the level is 0"},
        {"no block ends", {}, 70, -1, "\"Rest\" ends"},
        {"the run ends first", blocks, 31, -1, "the run ends first"},
        {"too short a run", blocks, 10, -1, "no feedback"},
        {"until the task has lasted 1 volume", blocks, 70, 32, "because of \"Rest\"", suppressed},
        {"a pair is not", blocks, 70, 31, "Feedback from volume 32 on", suppressedPair},
        {"it exceeds 0.1 at index 12", blocks, 70, 13, "from volume 14 on", ofModel},
        {"no model", {}, 70, -1, "no model", ofModel},
        {"a curve", blocks, 70, 10, "curve is shown from volume 11", curve},
        {"a classifier", blocks, 70, 0, "classifier", classifier},
        {"long end shift", blocks, 70, 38, "one volume, the latest one up to volume 14", longShift},
        {"blocked", blocks, 70, 31, "boxes stay empty", blocked}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const FeedbackForecast forecast =
            forecastFeedback(choicesWith(c.edit), protocolOf(c.tasks, false), c.nrOfVolumes, TR);
        EXPECT_EQ(forecast.firstVolume, c.first);
        EXPECT_TRUE(forecast.text.contains(c.text)) << forecast.text.toStdString();
    }
    const FeedbackChoices asTheyAre = choicesWith([](FeedbackChoices&) {});
    EXPECT_EQ(forecastFeedback(asTheyAre, protocolOf(blocks, true), 70, TR).firstVolume, 31);
}

TEST(DryRun, SignalsAreConstantTheModelsResponseOrNoise) {
    StimulationProtocol protocol = protocolOf({{11, 20}}, false);
    EXPECT_TRUE(protocol.addInterval(0, 1, 10)) << "rest brings no response";
    const auto curve = [&](MadeUpSignal signal, int nrOfVolumes) {
        return madeUpCurve({signal, 4.0, nrOfVolumes, 1, TR}, protocol);
    };
    EXPECT_EQ(curve(MadeUpSignal::None, 3), std::vector<float>(3, 1000.0f));
    const std::vector<float> ideal = curve(MadeUpSignal::IdealResponse, 40);
    // NumPy: densities of shape 6 and 16, their difference with the second by 6, at 0, 2, ... 32 s,
    // convolved with the box and scaled to a peak of 40.
    const std::vector<std::pair<size_t, double>> expected{{10, 1000.0},   {12, 1016.177},
                                                          {14, 1037.248}, {15, 1039.943},
                                                          {19, 1036.538}, {25, 995.119}};
    for (const auto& [volume, value] : expected)
        EXPECT_NEAR(double(ideal[volume]), value, 0.001) << volume;
    const std::vector<float> noise = curve(MadeUpSignal::Noise, 4000);
    double squares = 0.0;
    for (const float value : noise)
        squares += std::pow(double(value) - 1000.0, 2);
    EXPECT_NEAR(std::accumulate(noise.begin(), noise.end(), 0.0) / 4000.0, 1000.0, 2.0);
    EXPECT_NEAR(std::sqrt(squares / 4000.0), 40.0, 2.0);
    EXPECT_EQ(noise, curve(MadeUpSignal::Noise, 4000));
}

TEST(DryRun, GoingBackGivesWhatTheRunGaveThere) {
    const FeedbackChoices choices = choicesWith([](FeedbackChoices& c) { c.SetToMaxValue = true; });
    const StimulationProtocol protocol = protocolOf({{11, 20}, {31, 40}, {51, 60}}, false);
    const DryRunOptions options{MadeUpSignal::Noise, 5.0, 70, 2, TR};
    FeedbackDryRun run(choices, protocol, options);
    FeedbackDryRun straight(choices, protocol, options);
    EXPECT_EQ(run.choices().roiMode, useROI1);
    run.goTo(69);
    EXPECT_GT(run.choices().MaxPSC[0], 4.0f) << "it followed the noise";
    run.goTo(35);
    run.goTo(70); // outside
    straight.goTo(35);
    EXPECT_EQ(run.volume(), 35);
    EXPECT_EQ(run.values().RelativeLevel, straight.values().RelativeLevel);
    EXPECT_NE(run.values().RelativeLevel, 0.0f);
    EXPECT_EQ(run.choices(), straight.choices());
    EXPECT_EQ(run.frame(), straight.frame());
    EXPECT_EQ(run.conditionName(), "Up_7");
    EXPECT_EQ(run.values().TargetLevel, 7);
}
