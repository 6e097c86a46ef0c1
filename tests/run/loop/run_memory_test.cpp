// The memory that is told before a run, against what the run then takes.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/loop/run_disk.h"
#include "run/loop/run_memory.h"

#include "run/loop/session_fixture.h"

namespace {

class RunMemoryTest : public SessionFixture {
protected:
    [[nodiscard]] RunMemory need() const {
        return memoryOfRun(memorySizes(*session.functionalDocument, session.settings));
    }
};

} // namespace

TEST_F(RunMemoryTest, IsWhatTheRunTakes) {
    writeSession(24, 2, {{"MotionCorrection:", "1"}, {"AutoContrastGenerationLevel:", "2"}});
    size_t reported = 0;
    script.atVolume = [&](int volume) {
        if (volume < 20)
            return;
        const QtCortivoDoc& document = *session.functionalDocument;
        const FMRProject& project = document.project;
        reported = need().model;
        EXPECT_EQ(need().volumes,
                  project.volumes.size() * project.volumes.samplesOfEach() * sizeof(int16_t));
        EXPECT_EQ(need().model, document.glm.values.size() * sizeof(double));
        size_t clusters = 0;
        for (const std::vector<int>& slice : document.maps.ClusterSizeSlices)
            clusters += slice.size() * sizeof(int);
        EXPECT_EQ(need().maps, document.maps.ContrastMaps.size() * sizeof(float) + clusters +
                                   document.mask.voxels.size());
        // 2 volumes beside the run, the slices in colours, the 25 tiles, of which 8 are counted,
        // and a cube.
        EXPECT_EQ(need().images, 256u * (2 * 2 + 4) + 8 * 64 * 4 + 256 * 256 * 256);
        EXPECT_EQ(need().motion, 2 * document.motion.motionTarget.size() * sizeof(int16_t));
    };
    messages.expectInformation("INFO: This data set did not allow*"); // scrambled samples
    session.runButtonPressed();
    EXPECT_EQ(reported, 8u * 256 * 5); // four predictors and the sum of squares
    const QtCortivoDoc& document = *session.functionalDocument;
    EXPECT_EQ(need().wholeRunModel,
              document.wholeRunModel.GLMMaps.size() * sizeof(float) + document.mask.voxels.size());
}

TEST_F(RunMemoryTest, HoldsTheSizesOfSevenTesla) {
    RunMemorySizes sizes;
    sizes.volume = {240, 240, 120};
    sizes.nrOfVolumes = 1000;
    sizes.nrOfTiles = 121;
    sizes.nrOfPredictors = 4;
    sizes.nrOfContrasts = 3;
    EXPECT_EQ(memoryOfRun(sizes).volumes, 13824000000u);
    EXPECT_EQ(memoryText(memoryOfRun(sizes).volumes), "13.8 GB");
    // Beside them 25 bytes for images and maps, 4 for volumes that arrive, and 40 or, after the
    // run, 45 for a model, of each voxel; and what doesn't depend on it.
    const size_t besides = 121 * 57600 * 4 + (1 << 24);
    const size_t recording = 6912000u * 44 + (64 << 20);
    const size_t ofRun = 13824000000u + 6912000u * 25 + besides + recording;
    EXPECT_EQ(memoryOfRun(sizes).ofRun(), ofRun);
    sizes.inplanes = {10, 10, 10}; // samples and pixels of 2 and 4 bytes
    EXPECT_EQ(memoryOfRun(sizes).ofRun(), ofRun + 6000);
    sizes.motion = MotionMethod::LeastSquares;
    EXPECT_GT(memoryOfRun(sizes).ofRun(), ofRun + 6000);
    EXPECT_EQ(memoryText(616000000), "616 MB");
}

TEST_F(RunMemoryTest, ADiskWithoutRoomIsToldOf) {
    FMRProject project;
    project.ResolutionX = project.ResolutionY = 8;
    project.NrOfSlices = 4;
    project.NrOfVolumes = 20;
    tellOfDiskWithoutRoom(project, path(""), 0);
    tellOfDiskWithoutRoom(project, path("no such folder"), 0);
    project.ResolutionX = project.ResolutionY = 10000;
    project.NrOfSlices = 1000;
    project.NrOfVolumes = 1000000; // more than any disk holds
    const qint64 samples = 200'000'000'000'000'000;
    const std::pair<qint64, const char*> cases[] = {
        {0, "400000000.0 GB"}, {samples / 2, "300000000.0 GB"}, {2 * samples, "200000000.0 GB"}};
    for (const auto& [bytesOfJournal, need] : cases) {
        messages.expectWarning(
            QString("WARNING: The journal and the results of this run need %1 *").arg(need));
        tellOfDiskWithoutRoom(project, path(""), bytesOfJournal);
    }
}
