// A simulated scanner's files through the real readers and the real loop, held against the truth.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/loop/session_fixture.h"

#include "scanner_simulator/simulated_scan.h"

namespace {

class SimulatedRunTest : public testing::Test {
protected:
    void record(const SimulationOptions& options) {
        scan = std::make_unique<SimulatedScan>(options);
        ASSERT_TRUE(scan->writeSettings() && scan->writeProtocol());
        ASSERT_TRUE(QDir().mkpath(scan->watchFolder()));
        for (int volume = 0; volume < options.nrOfVolumes; ++volume)
            ASSERT_TRUE(scan->writeVolume(volume, scan->watchFolder()));
        session.settings.settingsFilePath = folder.filePath(options.name + "-1.vco");
        session.settings.settingsFileDir = folder.path() + "/";
        session.runButtonState = RunButtonState::Ready;
        session.runButtonPressed();
        ASSERT_TRUE(session.functionalDocument);
    }
    SimulationOptions options(ScannerType type) const {
        SimulationOptions chosen;
        chosen.type = type;
        chosen.folder = folder.path();
        return chosen;
    }

    QTemporaryDir folder;
    ScriptedMessages messages;
    SimulatedPump pump;
    ProbeDisplay display;
    RunSession session{pump, display};
    std::unique_ptr<SimulatedScan> scan;
};

// Part of the voxels under `wanted` whose map value passes 3.
double fractionAbove3(const ZeroedBuffer<float>& map, const std::vector<uint8_t>& wanted) {
    size_t above = 0;
    size_t all = 0;
    for (size_t i = 0; i < wanted.size(); ++i) {
        all += wanted[i] != 0;
        above += wanted[i] && map[i] > 3.0f;
    }
    return all == 0 ? -1.0 : double(above) / double(all);
}

} // namespace

TEST_F(SimulatedRunTest, ActiveRegionsAreFoundAndOthersAreNot) {
    record(options(ScannerType::SiemensMosaic));
    const QtCortivoDoc& document = *session.functionalDocument;
    ASSERT_GE(document.maps.NrOfActiveContrasts, 2);
    const std::vector<uint8_t> anyActive = [&] {
        std::vector<uint8_t> active = scan->activeVoxels(1);
        const std::vector<uint8_t> second = scan->activeVoxels(2);
        for (size_t i = 0; i < active.size(); ++i)
            active[i] |= second[i];
        return active;
    }();
    for (int condition : {1, 2}) {
        const int map = condition - 1;
        ASSERT_EQ(document.maps.contrastOfMap[size_t(map)], map);
        const ZeroedBuffer<float>& values = document.maps.ContrastMaps[size_t(map)];
        EXPECT_GE(fractionAbove3(values, scan->activeVoxels(condition)), 0.95) << condition;
        std::vector<uint8_t> others = document.mask.voxels;
        for (size_t i = 0; i < others.size(); ++i)
            others[i] = others[i] && !anyActive[i];
        const double falsePositives = fractionAbove3(values, others);
        EXPECT_GE(falsePositives, 0.0);
        EXPECT_LE(falsePositives, 0.01) << condition;
    }
}

TEST_F(SimulatedRunTest, SingleSliceFilesGiveTheSameVolumesAsTheyWereMeasured) {
    SimulationOptions chosen = options(ScannerType::Dicom);
    chosen.sizeX = chosen.sizeY = 32;
    chosen.nrOfSlices = 6;
    chosen.nrOfVolumes = 40;
    record(chosen);
    const FMRProject& project = session.functionalDocument->project;
    ASSERT_EQ(project.volumes.size(), 38u);
    for (int volume = 0; volume < 38; ++volume) {
        const std::vector<uint16_t> expected = scan->volume(volume + chosen.nrOfVolumesToSkip);
        const std::span<const int16_t> found = project.volumes[size_t(volume)].span();
        EXPECT_TRUE(std::equal(found.begin(), found.end(), expected.begin(), expected.end(),
                               [](int16_t a, uint16_t b) { return uint16_t(a) == b; }))
            << volume;
    }
}
