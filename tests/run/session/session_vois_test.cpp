// What else an anatomy is for: volumes of interest as regions, and export.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/session/anatomy_session.h"

#include <cstring>

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
        EXPECT_EQ((std::array{regions[0].FromSlice, regions[0].Left, regions[0].Right,
                              regions[0].Top, regions[0].Bottom}),
                  (std::array{4, 11, 13, 13, 14}));
        const auto samples = run.session.functionalDocument->project.volumes[23];
        const size_t first = size_t((3 * 32 + 12) * 32 + 10);
        EXPECT_NEAR(regions[0].TimeCourseValues[23], (samples[first] + samples[first + 1]) / 2.0,
                    1e-3);
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
    probe.onEndOfVolume = [&](int volume) {
        if (volume == 0)
            atFirstVolume = run.session.regions.list()->count();
    };
    run.session.listeners.play({"regions", {}}); // the run before was recovered
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

TEST(SessionVOIsTest, AnotherConventionOfLeftAndRightIsTold) {
    AnatomySession run;
    // The name of the space is another program's, for the anatomy's own.
    run.put("areas.voi",
            voiFile("native", {{inAnatomy(AnatomySession::placeInScanner(10, 12, 3))}}));
    EXPECT_EQ(run.run(), QStringList());
    for (const auto& [ofAnatomy, told] : {std::pair(0, 0), {1, 0}, {2, 1}}) {
        run.put("anatomy.vmr", vmrWith(1, 1, 1) + vmrEnd(ofAnatomy));
        ASSERT_TRUE(run.session.reloadData());
        const qsizetype before = run.messages.shownModeless().size();
        EXPECT_TRUE(run.session.vois.load(run.folder.filePath("areas.voi")));
        EXPECT_EQ(run.messages.shownModeless().size(), before + told) << ofAnatomy;
        EXPECT_EQ(run.messages.shown().filter("neurological").size(), told);
        EXPECT_EQ((*run.session.regions.list())[0].voxels, (VoxelList{{10}, {12}, {3}}));
    }
}

TEST(SessionExportTest, ARunIsExportedWithItsMapsAndMask) {
    AnatomySession run;
    EXPECT_FALSE(run.session.exports.exportAsNifti(run.folder.filePath("none.nii")));
    EXPECT_EQ(run.run(), QStringList());
    ASSERT_TRUE(run.session.exports.exportAsNifti(run.folder.filePath("run.nii")));
    const auto exported = [&](const char* name) { return contentOf(run.folder.filePath(name)); };
    constexpr qsizetype voxels = 32 * 32 * 6;
    constexpr qsizetype header = 352;
    const QByteArray series = exported("run.nii");
    ASSERT_EQ(series.size(), header + 2 * 24 * voxels);
    const auto samples = run.session.functionalDocument->project.volumes[5];
    EXPECT_EQ(std::memcmp(series.data() + header + 2 * 5 * voxels, samples.data(), 2 * voxels), 0);
    const int maps = run.session.functionalDocument->maps.NrOfActiveContrasts;
    ASSERT_GT(maps, 0);
    EXPECT_EQ(exported("run_maps.nii").size(), header + 4 * maps * voxels);
    EXPECT_EQ(exported("run_mask.nii").size(), header + voxels);
    EXPECT_TRUE(run.session.report.outcomeText.contains("run.nii"));
    EXPECT_FALSE(run.session.exports.exportAsNifti("/nowhere/run.nii.gz"));
    EXPECT_TRUE(run.messages.shown().last().startsWith("ERROR: "));
}
