// What the simulated scanner writes, and when.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "scanner_simulator/delivery.h"
#include "scanner_simulator/protocol_files.h"
#include "scanner_simulator/simulated_scan.h"
#include "support/files.h"

#include <QTemporaryDir>

namespace {

/// Six analysed volumes: two of Fixation, two of Faces, two of Fixation.
SimulationOptions shortRun() {
    SimulationOptions options;
    options.nrOfVolumes = 7;
    options.nrOfVolumesToSkip = 1;
    options.blockLength = 2;
    return options;
}

using Lines = QByteArray (*)(const ProtocolSource&, int);

void expectLines(Lines lines, std::initializer_list<const char*> expected) {
    const SimulationOptions options = shortRun();
    const std::vector<SimulatedCondition> conditions = blockProtocol(options);
    int volume = 0;
    for (const char* text : expected) {
        EXPECT_STREQ(lines({options, conditions}, volume).constData(), text) << volume;
        ++volume;
    }
}

TEST(DeliverySchedule, FollowsTheRepetitionTimeAndTheFaults) {
    const auto schedule = [](const DeliveryOptions& options, bool severalFiles = false) {
        return deliverySchedule(options, {3, severalFiles, false, 1000, {}});
    };
    using Steps = std::vector<DeliveryStep>;
    EXPECT_EQ(schedule({.atRepetitionTime = false}), (Steps{{0, 0}, {1, 0}, {2, 0}}));
    EXPECT_EQ(schedule({.speed = 4.0, .startDelay = 7}), (Steps{{0, 257}, {1, 507}, {2, 757}}));
    EXPECT_EQ(schedule({.late = {{1, 1500}}}), (Steps{{1, 2000}, {0, 2500}, {2, 3000}}));
    EXPECT_EQ(schedule({.missing = {2}}), (Steps{{0, 1000}, {2, 3000}}));
    EXPECT_EQ(schedule({.outOfOrder = true}), (Steps{{1, 1000}, {0, 2000}, {2, 3000}}));
    EXPECT_EQ(schedule({.outOfOrder = true}, true), (Steps{{0, 1000}, {1, 2000}, {2, 3000}}));
}

// The real-time protocol is one volume ahead of the scan; the log states what begins with a volume.
TEST(GrowingProtocol, GrowsWithEachVolume) {
    expectLines(rtpLines, {"SCAN BEGIN\n", "1 0 0\n2 0 0\n", "3 1 0\n", "4 1 0\n", "5 0 0\n",
                           "6 0 0\n", "SCAN END\n"});
    expectLines(tdatLines, {"", "0 SCAN BlockBegin Fixation\n", "1000 SCAN Volume 2\n",
                            "1900 SCAN BlockEnd Fixation 2000\n2000 SCAN BlockBegin Faces\n",
                            "3000 SCAN Volume 4\n",
                            "3900 SCAN BlockEnd Faces 2000\n4000 SCAN BlockBegin Fixation\n",
                            "5900 SCAN BlockEnd Fixation 2000\n6000 SCAN RunEnd\n"});
}

TEST(SimulatedMotion, MovesTheHeadAsItSays) {
    SimulationOptions options;
    options.motion = HeadMotion::Jumps;
    options.noise = 0.0;
    options.fieldOfView = 64; // pixels of 1 mm, so that the first jump is one pixel along x
    options.amplitude = 0.0;
    const SimulatedScan scan(options);
    const int jump = 2 + 38; // a quarter of 150 volumes after the skipped ones
    EXPECT_TRUE(scan.pose(jump - 1).isAtRest());
    EXPECT_DOUBLE_EQ(scan.pose(jump).translation[0], 1.0);
    const std::vector<uint16_t> before = scan.volume(jump - 1);
    const std::vector<uint16_t> after = scan.volume(jump);
    for (size_t x = 1; x < 64; ++x) { // drift and pulsation change it by less than a percent
        const size_t voxel = (12 * 64 + 32) * 64 + x;
        EXPECT_NEAR(after[voxel], before[voxel - 1], 0.012 * before[voxel - 1]) << x;
    }
}

// Each voxel of the fine pattern follows its condition more than the other; their means do not.
TEST(FinePattern, TellsConditionsApartInVoxelsOnly) {
    SimulationOptions options;
    options.patternStrength = 0.02;
    options.noise = 0.0;
    const SimulatedScan scan(options);
    const std::vector<int8_t> preferences = scan.preferences();
    const std::vector<uint16_t> rest = scan.volume(2 + 0);
    const std::vector<uint16_t> faces = scan.volume(2 + 19);
    const std::vector<uint16_t> houses = scan.volume(2 + 39);
    double sums[3] = {};
    int count[3] = {};
    for (size_t voxel = 0; voxel < preferences.size(); ++voxel)
        if (preferences[voxel] != 0) {
            const double difference = (double(faces[voxel]) - houses[voxel]) / rest[voxel];
            sums[preferences[voxel] + 1] += difference;
            ++count[preferences[voxel] + 1];
        }
    EXPECT_GT(count[0] + count[2], 100);
    EXPECT_NEAR(double(count[0]) / count[2], 1.0, 0.25);
    EXPECT_NEAR(sums[2] / count[2], 0.04, 0.008); // 2 % more of one, 2 % less of the other
    EXPECT_NEAR(sums[0] / count[0], -0.04, 0.008);
}

TEST(SampleSession, IsWhatTheSimulatorWritesByDefault) {
    QTemporaryDir folder;
    SimulationOptions options;
    options.folder = folder.path();
    options.name = "VCO_FacesHouses";
    const SimulatedScan scan(options);
    ASSERT_TRUE(scan.writeSettings() && scan.writeProtocol());
    for (const QString name : {"VCO_FacesHouses-1.vco", "VCO_FacesHouses.prt"})
        EXPECT_EQ(contentOf(VELO_SOURCE_DIR "/src/resources/sample_session/" + name).toStdString(),
                  contentOf(folder.filePath(name)).toStdString());
}

} // namespace
