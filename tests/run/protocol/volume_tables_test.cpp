// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/protocol/volume_tables.h"

#include <gtest/gtest.h>

TEST(VolumeTables, NamesEndInTargetLevels) {
    // Names, levels, what is left of the name, the targets, and the text for the subject.
    const std::tuple<const char*, int, const char*, int, int, const char*> cases[] = {
        {"Up_7", 2, "Up", 7, 7, "Up"},
        {"Press_Left_3", 2, "Press", 0, 3, "Press"}, // "Left" is no number
        {"Press_Left_Hand_3_4", 2, "Press_Left_Hand", 3, 4, "Press Left Hand"},
        {"Up_6_8", 1, "Up_6", 8, 8, "Up"},
        {"Down_-2", 2, "Down", -2, -2, "Down"},
        {"rest_x", 2, "rest", 0, 0, "rest"},
        {"_", 2, "", 0, 0, ""},
        {"Task", 2, "Task", noTargetLevel, noTargetLevel, "Task"},
        {"PreFIXed", 2, "PreFIXed", 0, 0, "PreFIXed"},
        {"BaseLine", 1, "BaseLine", 0, 0, "BaseLine"},
        {"Arrest", 2, "Arrest", 0, 0, "Arrest"}};
    for (const auto& [name, levels, rest, target1, target2, instruction] : cases) {
        SCOPED_TRACE(name);
        const ConditionTargets targets = conditionTargets(name, levels);
        EXPECT_EQ(targets.name, rest);
        EXPECT_EQ(std::pair(targets.target1, targets.target2), std::pair(target1, target2));
        EXPECT_EQ(instructionText(name), instruction);
    }
}

TEST(VolumeTables, IntervalsAreRoundedClampedAndOverwritten) {
    struct {
        ResolutionOfTime unit;
        float TR;
        std::vector<std::array<int, 3>> intervals; ///< condition, from, to
        std::vector<int> conditions;
    } const cases[] = {
        {ResolutionOfTime::Volumes, 1.0f, {{1, 2, 3}, {2, 3, 4}}, {0, 1, 2, 2, 0, 0}},
        {ResolutionOfTime::Volumes, 1.0f, {{2, 3, 4}, {1, 2, 3}}, {0, 1, 2, 2, 0, 0}},
        {ResolutionOfTime::Volumes, 1.0f, {{1, -5, 1}, {2, 5, 99}}, {1, 0, 0, 0, 2, 2}},
        {ResolutionOfTime::Volumes, 1.0f, {{1, 50, 60}, {2, 4, 2}}, {0, 0, 0, 0, 0, 1}},
        {ResolutionOfTime::Milliseconds, 2000.0f, {{1, 2999, 4999}}, {1, 1, 0, 0, 0, 0}},
        {ResolutionOfTime::Milliseconds, 2000.0f, {{1, 3000, 5000}}, {0, 1, 1, 0, 0, 0}},
        {ResolutionOfTime::Milliseconds, 0.0f, {{1, 3000, 5000}}, {1, 0, 0, 0, 0, 0}}};
    for (const auto& each : cases) {
        StimulationProtocol protocol;
        protocol.resolutionOfTime = each.unit;
        for (const char* name : {"rest", "Up_7_9", "Task"})
            (void)protocol.conditionIndex(name);
        for (const auto& [condition, from, to] : each.intervals)
            EXPECT_TRUE(protocol.addInterval(condition, from, to));
        VolumeTables tables;
        buildVolumeTables(tables, protocol, 6, each.TR);
        EXPECT_EQ(tables.VolumeConditionIndex, each.conditions);
        for (int i = -1; i <= 6; ++i) {
            const int condition = tables.condition(i);
            const bool rest = condition == 0;
            EXPECT_EQ(tables.target1(i), rest ? 0 : condition == 1 ? 7 : noTargetLevel);
            EXPECT_EQ(tables.target2(i), rest ? 0 : condition == 1 ? 9 : noTargetLevel);
        }
    }
    VolumeTables none;
    buildVolumeTables(none, {}, -1, 2000.0f);
    EXPECT_TRUE(none.VolumeTablesReady && none.VolumeConditionIndex.empty());
}
