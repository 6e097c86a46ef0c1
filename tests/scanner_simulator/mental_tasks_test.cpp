// Letters that the simulated subject codes by mental tasks.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "scanner_simulator/command_line.h"
#include "scanner_simulator/head_phantom.h"
#include "scanner_simulator/mental_tasks.h"

#include <gtest/gtest.h>
#include <set>

namespace {

SimulationOptions optionsOf(const QStringList& arguments) {
    const SimulatorCommand command = parseCommandLine(QStringList{"simulator"} + arguments);
    EXPECT_EQ(command.problem, QString());
    return command.simulation;
}

/// "from-to" of each interval, followed by a blank.
std::string intervalsOf(const SimulatedCondition& condition) {
    std::string text;
    for (const ProtocolInterval& interval : condition.intervals)
        text += std::to_string(interval.from) + "-" + std::to_string(interval.to) + " ";
    return text;
}

TEST(Spelling, CodesALetterByTaskOnsetAndDuration) {
    const SimulationOptions options = optionsOf({"--spell", "e Rz", "--skip", "1"});
    EXPECT_EQ(options.repetitionTime, 1667);
    EXPECT_EQ(options.nrOfVolumes, 1 + 4 * 42 + 1);
    const QByteArray text = spellingText(options);
    EXPECT_EQ(text.mid(text.indexOf("\nE") + 1).toStdString(), // 3 volumes of 1.667 s and the onset
              "E  5     1  1     15.001  30\n_  0    43  1     75.015  10\n"
              "R 18    85  3    145.029  10\nZ 26   127  3    235.043  30\n");
    const std::vector<SimulatedCondition> protocol = taskProtocol(options);
    ASSERT_EQ(protocol.size(), 2u);
    EXPECT_EQ(intervalsOf(protocol[0]), "1-3 34-45 76-87 118-129 160-169 ");
    EXPECT_EQ(intervalsOf(protocol[1]), "4-33 46-75 88-117 130-159 ");
}

TEST(Training, HasTrialsOfEachTaskAndDurationWithRestAround) {
    const SimulationOptions options = optionsOf({"--train", "2"});
    const std::vector<SimulatedCondition> protocol = taskProtocol(options);
    ASSERT_EQ(protocol.size(), 10u);
    EXPECT_EQ(protocol[6].name, "Task2_30s");
    std::vector<int> conditionOf(size_t(options.nrOfVolumes - options.nrOfVolumesToSkip) + 1, -1);
    for (int condition = 0; condition < 10; ++condition)
        for (const ProtocolInterval& interval : protocol[size_t(condition)].intervals) {
            const int length = condition == 0 ? 12 : 6 * ((condition - 1) % 3 + 1);
            EXPECT_EQ(interval.to - interval.from + 1, length) << condition;
            for (int volume = interval.from; volume <= interval.to; ++volume)
                EXPECT_EQ(std::exchange(conditionOf.at(size_t(volume)), condition), -1) << volume;
        }
    std::vector<int> order;
    for (size_t volume = 1; volume < conditionOf.size(); ++volume)
        if (conditionOf[volume] != 0 && conditionOf[volume - 1] == 0)
            order.push_back(conditionOf[volume]);
    ASSERT_EQ(order.size(), 18u);
    EXPECT_NE(order, std::vector<int>({1, 2, 3, 4, 5, 6, 7, 8, 9, 1, 2, 3, 4, 5, 6, 7, 8, 9}));
    for (const auto begin : {order.begin(), order.begin() + 9})
        EXPECT_EQ(std::set<int>(begin, begin + 9).size(), 9u);
}

TEST(MentalTasks, AreRefusedWhereTheyDoNotFit) {
    const QStringList rejected[] = {{"--spell", "A1"},
                                    {"--spell", ""},
                                    {"--train", "0"},
                                    {"--train", "34"},
                                    {"--spell", "A", "--train", "1"},
                                    {"--spell", "A", "--volumes", "44"},
                                    {"--spell", "A", "--tr", "5001"},
                                    {"--spell", "A", "--code", "1"},
                                    {"--spell", "A", "--replay", "folder"},
                                    {"--response-delay", "31"}};
    for (const QStringList& arguments : rejected)
        EXPECT_NE(parseCommandLine(QStringList{"simulator"} + arguments).problem, QString())
            << arguments.join(' ').toStdString();
}

// A region that reached into the skull would hold voxels that follow no task.
TEST(TaskRegions, LieInTheBrainAndApartFromOtherRegions) {
    for (const int nrOfSlices : {4, 25}) {
        SimulationOptions options;
        options.nrOfSlices = nrOfSlices;
        const ScanGeometry geometry(options);
        const HeadPhantom head(geometry);
        std::array<int, HeadPhantom::nrOfTaskRegions> voxels{};
        for (int i = 0; i < int(geometry.voxels()); ++i) {
            const int inSlice = i % int(geometry.sliceVoxels());
            const Point point = geometry.voxelCentre(
                inSlice % options.sizeX, inSlice / options.sizeX, i / int(geometry.sliceVoxels()));
            const int region = head.taskRegion(point);
            if (region == 0)
                continue;
            ++voxels.at(size_t(region) - 1);
            EXPECT_TRUE(head.isBrain(point)) << region;
            EXPECT_TRUE(head.activeCondition(point) == 0 && head.preference(point) == 0) << region;
        }
        EXPECT_GE(*std::ranges::min_element(voxels), 12) << nrOfSlices;
    }
}

} // namespace
