// What else an anatomy is for: volumes of interest as regions, export, a run that is played again.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/session/anatomy_session.h"

namespace {

QByteArray voiFile(const QByteArray& space, const std::vector<std::vector<Point>>& volumes) {
    QByteArray text = "FileVersion: 4\nReferenceSpace: " + space +
                      "\nOriginalVMRFramingCubeDim: 256\nLeftRightConvention: 1\n" +
                      formatted("NrOfVOIs: %i\n", int(volumes.size()));
    int number = 0;
    for (const std::vector<Point>& volume : volumes) {
        text += formatted("NameOfVOI: Area %i\nColorOfVOI: 255 0 0\nNrOfVoxels: %i\n", ++number,
                          int(volume.size()));
        for (const Point& p : volume)
            text += formatted("%i %i %i\n", int(std::lround(p.x)), int(std::lround(p.y)),
                              int(std::lround(p.z)));
    }
    return text + "NrOfVOIVTCs: 0\n";
}

} // namespace

TEST(SessionVOIsTest, VolumesOfInterestBecomeRegionsWithTheirMean) {
    AnatomySession run;
    const auto at = [](int x, int y, int z) {
        return inAnatomy(AnatomySession::placeInScanner(x, y, z));
    };
    run.put("areas.voi", voiFile("CV", {{at(10, 12, 3), at(11, 12, 3)}, {{2, 2, 2}}}));
    run.put("atlas.voi", voiFile("TAL", {{at(10, 12, 3)}}));
    EXPECT_EQ(run.run(), QStringList());
    SessionVOIs& vois = run.session.vois;
    EXPECT_FALSE(vois.save(run.folder.filePath("none.voi"))) << "there are none yet";
    EXPECT_FALSE(vois.load(run.folder.filePath("atlas.voi")));
    EXPECT_TRUE(run.messages.shown().last().contains("in the space \"TAL\""));
    EXPECT_TRUE(run.session.regions.list()->empty());
    const auto expectRegion = [&] {
        const Regions& regions = *run.session.regions.list();
        ASSERT_EQ(regions.count(), 1);
        EXPECT_EQ(regions[0].voxels, (VoxelList{{10, 11}, {12, 12}, {3, 3}}));
        for (const int volume : {0, 23}) {
            const auto samples = run.session.functionalDocument->project.volumes[size_t(volume)];
            const size_t first = size_t((3 * 32 + 12) * 32 + 10);
            EXPECT_NEAR(regions[0].TimeCourseValues[size_t(volume)],
                        (samples[first] + samples[first + 1]) / 2.0, 1e-3);
        }
    };
    EXPECT_TRUE(vois.load(run.folder.filePath("areas.voi")));
    EXPECT_TRUE(run.messages.shown().last().startsWith("SLICE OUT OF BOUNDS"));
    EXPECT_TRUE(run.messages.shown().last().contains("Area 2"));
    expectRegion();
    // Only what became a region is saved.
    EXPECT_TRUE(vois.save(run.folder.filePath("saved.voi")));
    const QByteArray saved = contentOf(run.folder.filePath("saved.voi"));
    EXPECT_TRUE(saved.contains("Area 1") && !saved.contains("Area 2"));
    // A file that is refused leaves the volumes that were chosen before.
    EXPECT_TRUE(vois.preLoad(run.folder.filePath("saved.voi")));
    EXPECT_FALSE(vois.preLoad(run.folder.filePath("missing.voi")));
    int atFirstVolume = -1;
    ProbeListener probe(run.session.listeners, ListenerPlace::Plots);
    probe.onStep = [&](VolumeStep step, const VolumeAtHand& hand) {
        if (step == VolumeStep::Plots && hand.volume == 0)
            atFirstVolume = hand.document.regions.count();
        return true;
    };
    EXPECT_EQ(run.run(), QStringList());
    EXPECT_EQ(atFirstVolume, 1);
    expectRegion();
    // Without an anatomy nothing can be mapped, and the run goes on.
    run.setOverlay(0, {});
    const QStringList told = run.run();
    ASSERT_EQ(told.size(), 1);
    EXPECT_TRUE(told.first().contains("no anatomy with a known place"));
    EXPECT_EQ(run.messages.shownModeless().last(), told.first());
    EXPECT_EQ(run.session.report.currentVolume, 23);
}

TEST(SessionExportTest, ARunIsExportedWithItsMapsAndMask) {
    AnatomySession run;
    EXPECT_FALSE(run.session.exports.exportAsNifti(run.folder.filePath("none.nii")));
    EXPECT_EQ(run.run(), QStringList());
    ASSERT_TRUE(run.session.exports.exportAsNifti(run.folder.filePath("run.nii")));
    const auto exported = [&](const char* name) { return contentOf(run.folder.filePath(name)); };
    const QByteArray series = exported("run.nii");
    const auto word = [](const QByteArray& bytes, int offset) {
        return int(uint8_t(bytes[offset])) | int(uint8_t(bytes[offset + 1])) << 8;
    };
    // Sizes stand from byte 40 on, the samples from byte 352 on.
    for (int i = 0; const int expected : {4, 32, 32, 6, 24})
        EXPECT_EQ(word(series, 40 + 2 * i++), expected);
    const FMRProject& project = run.session.functionalDocument->project;
    ASSERT_EQ(series.size(), qsizetype(352 + 2 * 24 * 32 * 32 * 6));
    const size_t voxel = size_t((2 * 32 + 15) * 32 + 17);
    EXPECT_EQ(word(series, int(352 + 2 * (5 * 32 * 32 * 6 + voxel))),
              int(uint16_t(project.volumes[5][voxel])));
    const int maps = run.session.functionalDocument->maps.NrOfActiveContrasts;
    ASSERT_GT(maps, 0);
    EXPECT_EQ(exported("run_maps.nii").size(), 352 + qsizetype(4) * maps * 32 * 32 * 6);
    EXPECT_EQ(exported("run_mask.nii").size(), 352 + 32 * 32 * 6);
    EXPECT_FALSE(run.session.exports.exportAsNifti("/nowhere/run.nii.gz"));
    EXPECT_TRUE(run.messages.shown().last().startsWith("ERROR: "));
}

TEST(PlayedAnatomyTest, ARunIsPlayedAgainWithoutItsAnatomy) {
    AnatomySession run;
    EXPECT_EQ(run.run(), QStringList());
    ASSERT_TRUE(QFile::remove(run.folder.filePath("anatomy.vmr")));
    PlayOptions options;
    options.path = run.folder.filePath("results/Simulation-1.fmr");
    options.settingsFile = run.folder.filePath("Simulation-1.vco");
    options.targetFolder = run.folder.filePath("again/");
    ASSERT_TRUE(run.session.playSavedRun(options, true));
    EXPECT_EQ(run.session.report.currentVolume, 23);
    EXPECT_FALSE(run.session.anatomy.hasAnatomy());
    EXPECT_TRUE(run.session.anatomy.hasFunctionalCube());
}
