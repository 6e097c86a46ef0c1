// Anatomy in whole sessions: its place over the run, its files, volumes of interest, export.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/loop/simulated_session.h"
#include "volume/anatomy/vmr_volume.h"

#include <cmath>
#include <numbers>

namespace {

SimulationOptions smallRun(ScannerType type) {
    SimulationOptions options;
    options.type = type;
    options.sizeX = 32;
    options.sizeY = 32;
    options.nrOfSlices = 6;
    options.sliceDistance = 5.0;
    options.nrOfVolumes = 26;
    options.blockLength = 4;
    return options;
}

/// A cube with one bright voxel.
QByteArray vmrWith(int x, int y, int z) {
    QByteArray bytes("\0\1\0\1\0\1", 6);
    bytes.append(QByteArray(256 * 256 * 256, '\0'));
    bytes[6 + (z * 256 + y) * 256 + x] = char(200);
    return bytes;
}

QByteArray posText(const Point& first, const Point& last, const Point& row, const Point& column,
                   int version = 3) {
    const auto line = [](const Point& p) {
        return formatted("X: %g Y: %g Z: %g\n", p.x, p.y, p.z);
    };
    return formatted("FileVersion: %i\nSourceFile: \"a\"\nCoordinateSystem: 1\n", version) +
           line(first) + (version < 3 ? QByteArray() : line(last)) + line(row) + line(column) +
           "Rows: 32\nColumns: 32\nFoVRows: 192\nFoVCols: 192\nThickness: 5\nGap: 0\n";
}

// Sagittal, from right to left: x to the back, y down, z to the left.
constexpr Point anatomyCentre{3.0, -20.0, 10.0};
QByteArray anatomyPositions(int version = 3) {
    return posText({anatomyCentre.x - 127.5, anatomyCentre.y, anatomyCentre.z},
                   {anatomyCentre.x + 127.5, anatomyCentre.y, anatomyCentre.z}, {0, 1, 0},
                   {0, 0, -1}, version);
}
Point inAnatomy(const Point& scanner) {
    return {127.5 + scanner.y - anatomyCentre.y, 127.5 - scanner.z + anatomyCentre.z,
            127.5 + scanner.x - anatomyCentre.x};
}

class AnatomySession : public SimulatedSession {
public:
    explicit AnatomySession(ScannerType type = ScannerType::AnalyzeNw)
        : SimulatedSession(smallRun(type)) {
        writeAll();
        put("anatomy.vmr", vmrWith(100, 110, 120));
        put("anatomy.pos", anatomyPositions());
        setOverlay(1, "FMRVMRAlignVMRPosFile: \"./anatomy.pos\"\n"
                      "IntraSessionVMRFile: \"./anatomy.vmr\"\n");
        EXPECT_TRUE(session.inspectSettings());
        if (type == ScannerType::AnalyzeNw)
            putRunPositions();
    }
    void put(const QString& name, const QByteArray& bytes) const {
        writeFile(folder.filePath(name), bytes);
    }
    void setOverlay(int mode, const QByteArray& files) {
        QByteArray text = contentOf(folder.filePath("Simulation-1.vco"));
        const qsizetype start = text.indexOf("OverlayOnVMRMode:");
        text.replace(start, text.indexOf("OverlayOnSRFMode:") - start,
                     formatted("OverlayOnVMRMode: %i\n", mode) + files);
        text.replace("FlipSliceOrderInVolumeView:        1",
                     "FlipSliceOrderInVolumeView:        0");
        put("Simulation-1.vco", text);
    }
    /// Oblique: turned by 30 degrees about the axis from left to right.
    void putRunPositions() const {
        const Point normal = stackDirection();
        const auto at = [&](double mm) {
            return Point{runCentre.x, runCentre.y + mm * normal.y, runCentre.z + mm * normal.z};
        };
        writeFile(watchFolder() + session.settings.philipsFilePrefix + "00001.pos",
                  posText(at(-12.5), at(12.5), {1, 0, 0}, {0, normal.z, -normal.y}));
    }
    [[nodiscard]] static Point stackDirection() {
        const double angle = std::numbers::pi / 6.0;
        return {0.0, std::sin(angle), std::cos(angle)};
    }
    /// Where a voxel of the oblique run is: 6 x 6 x 5 mm.
    [[nodiscard]] static Point placeInScanner(int x, int y, int slice) {
        const Point normal = stackDirection();
        const double down = (y - 15.5) * 6.0;
        const double up = (slice - 2.5) * 5.0;
        return {runCentre.x + (x - 15.5) * 6.0, runCentre.y + down * normal.z + up * normal.y,
                runCentre.z - down * normal.y + up * normal.z};
    }
    [[nodiscard]] Anatomy& anatomy() const { return session.anatomicalDocument->anatomy; }

    static constexpr Point runCentre{-4.0, 12.0, 22.0};
};

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

void expectCubePoint(const AnatomicalCube& cube, const C3dVector& voxel, const Point& expected) {
    const auto point = cube.cubePlace(voxel);
    ASSERT_TRUE(point);
    EXPECT_NEAR(point->x, expected.x, 0.01);
    EXPECT_NEAR(point->y, expected.y, 0.01);
    EXPECT_NEAR(point->z, expected.z, 0.01);
    const auto back = cube.functionalPlace(*point);
    EXPECT_NEAR(back->x, voxel.x, 0.001);
    EXPECT_NEAR(back->y, voxel.y, 0.001);
    EXPECT_NEAR(back->z, voxel.z, 0.001);
}

} // namespace

TEST(SessionAnatomyTest, APositionFilePlacesTheRunInTheAnatomy) {
    AnatomySession run;
    EXPECT_EQ(run.run(), QStringList());
    ASSERT_TRUE(run.session.anatomy.hasAnatomy() && run.session.anatomy.hasFunctionalCube());
    EXPECT_EQ(run.session.requests.pendingOverlayVMR, 0);
    const AnatomicalCube& cube = run.anatomy().anatomical;
    EXPECT_EQ(cube.volume.cube[cubeIndex(100, 110, 120)], 200);
    const Point place = AnatomySession::placeInScanner(20, 11, 4);
    const Point expected = inAnatomy(place);
    expectCubePoint(cube, {20, 11, 4}, expected);
    for (const AnatomicalCube* shown : {&cube, &run.anatomy().functional}) {
        const C3dVector point = *shown->cubePlace({20, 11, 4});
        const auto scanner = spaceCoordinates(shown->spaces, point).scanner;
        ASSERT_TRUE(scanner);
        EXPECT_NEAR(scanner->x, place.x, 0.01);
        EXPECT_NEAR(scanner->y, place.y, 0.01);
        EXPECT_NEAR(scanner->z, place.z, 0.01);
    }
    // The operator moves about.
    std::array<int, 3> marked{};
    run.session.anatomy.voxelMarked = [&](int x, int y, int z) { marked = {x, y, z}; };
    ASSERT_TRUE(run.session.anatomy.show(ShownCube::Anatomical));
    run.session.anatomy.functionalVoxelClicked(20, 11, 4);
    EXPECT_EQ(run.anatomy().cross[1],
              (CubeVoxel{int(std::floor(expected.x + 0.5)), int(std::floor(expected.y + 0.5)),
                         int(std::floor(expected.z + 0.5))}));
    run.session.anatomy.moveCross({-5, 999, 0});
    EXPECT_EQ(run.anatomy().cross[1], (CubeVoxel{0, 255, 0}));
    EXPECT_EQ(marked, (std::array{-1, -1, -1}));
    run.session.anatomy.moveCross(nearestCubeVoxel(*cube.cubePlace({8, 9, 1})));
    EXPECT_EQ(marked, (std::array{8, 9, 1}));
    const CubeVoxel& other = run.anatomy().cross[0];
    const auto there =
        run.anatomy().functional.functionalPlace({float(other.x), float(other.y), float(other.z)});
    EXPECT_NEAR(there->x, 8.0, 0.25);
    EXPECT_NEAR(there->z, 1.0, 0.3);
}

TEST(SessionAnatomyTest, ImageHeadersPlaceTheRunInTheAnatomy) {
    AnatomySession run(ScannerType::GeHdxtDicom);
    EXPECT_EQ(run.run(), QStringList());
    // The headers give the centre of the first voxel.
    const Point slice = run.scan.geometry().sliceCentreInScanner(3);
    expectCubePoint(run.anatomy().anatomical, {9, 21, 3},
                    inAnatomy({slice.x + (9 - 16) * 6.0, slice.y + (21 - 16) * 6.0, slice.z}));
}

TEST(SessionAnatomyTest, WhatCanNotBeReadIsToldWithoutHoldingUpTheRun) {
    const QByteArray native = "FMRVMRAlignVMRPosFile: \"./%1\"\nIntraSessionVMRFile: \"./%2\"\n";
    const QByteArray acpc = "FMRVMRAlignVMRPosFile: \"./anatomy.pos\"\n"
                            "ACPCTransformationFile: \"./%1\"\nACPCVMRFile: \"./%2\"\n";
    const QByteArray atlas = "FMRVMRAlignVMRPosFile: \"./anatomy.pos\"\n"
                             "ACPCTransformationFile: \"./good.trf\"\n"
                             "TalairachCerebrumBorderFile: \"./%1\"\nTalairachVMRFile: \"./%2\"\n";
    const struct {
        int mode;
        const QByteArray& files;
        const char* first;
        const char* second;
        const char* message;
    } rows[] = {{1, native, "missing.pos", "anatomy.vmr", "ERROR: Can not open POS file"},
                {1, native, "old.pos", "anatomy.vmr", "ERROR: The POS file"},
                {1, native, "anatomy.pos", "missing.vmr", "Can not open specified VMR file !"},
                {2, acpc, "missing.trf", "anatomy.vmr", "ERROR: Can not open TRF file"},
                {2, acpc, "singular.trf", "anatomy.vmr", "ERROR: The TRF file"},
                {3, atlas, "missing.tal", "anatomy.vmr", "ERROR: Can not open TAL file"},
                {3, atlas, "flat.tal", "anatomy.vmr", "ERROR: The reference points"}};
    AnatomySession run;
    run.put("old.pos", anatomyPositions(2));
    const QByteArray trf = "FileVersion: 5\nDataFormat: Matrix\n1 0 0 0\n0 1 0 0\n0 0 %1 0\n"
                           "0 0 0 1\nTransformationType: 2\nCoordinateSystem: 0\n";
    run.put("good.trf", QByteArray(trf).replace("%1", "1"));
    run.put("singular.trf", QByteArray(trf).replace("%1", "0"));
    run.put("flat.tal", "FileVersion: 2\nVMR: \"a\"\n" +
                            QByteArray("P: 128 128 128\n").repeated(8) + "A: 1\nB: 1\n");
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.first) + " " + row.second);
        run.setOverlay(row.mode,
                       QByteArray(row.files).replace("%1", row.first).replace("%2", row.second));
        const qsizetype modeless = run.messages.shownModeless().size();
        const QStringList told = run.run();
        ASSERT_EQ(told.size(), 1);
        EXPECT_TRUE(told.first().startsWith(row.message)) << told.first().toStdString();
        EXPECT_EQ(run.messages.shownModeless().size(), modeless + 1);
        EXPECT_FALSE(run.session.anatomy.hasAnatomy());
        EXPECT_EQ(run.session.settings.OverlayOnVMRMode, 0);
        EXPECT_EQ(run.session.requests.pendingOverlayVMR, -1);
        EXPECT_EQ(run.session.report.currentVolume, 23);
    }
}

TEST(SessionAnatomyTest, TalairachSpaceIsUndoneOnTheWayToTheRun) {
    AnatomySession run;
    run.put("shift.trf", "FileVersion: 5\nDataFormat: Matrix\n1 0 0 2\n0 1 0 -3\n0 0 1 4\n0 0 0 1\n"
                         "TransformationType: 2\nCoordinateSystem: 0\n");
    // Half as large as the atlas along x, in front of the anterior commissure.
    run.put("brain.tal", "FileVersion: 2\nVMR: \"a\"\nAC: 128 128 128\nPC: 151 128 128\n"
                         "AP: 93 128 128\nPP: 230 128 128\nSP: 128 54 128\nIP: 128 170 128\n"
                         "LP: 128 128 196\nRP: 128 128 60\nA: 1\nB: 1\n");
    run.setOverlay(3, "FMRVMRAlignVMRPosFile: \"./anatomy.pos\"\n"
                      "ACPCTransformationFile: \"./shift.trf\"\n"
                      "TalairachCerebrumBorderFile: \"./brain.tal\"\n"
                      "TalairachVMRFile: \"./anatomy.vmr\"\n");
    EXPECT_EQ(run.run(), QStringList());
    // A point of the native anatomy lies at inverse(L) of it in the AC-PC cube.
    Point point = inAnatomy(AnatomySession::placeInScanner(14, 6, 3));
    point = {point.x - 2.0, point.y + 3.0, point.z - 4.0};
    ASSERT_LT(point.x, 128.0);
    point.x = 128.0 - 2.0 * (128.0 - point.x);
    expectCubePoint(run.anatomy().anatomical, {14, 6, 3}, point);
}

TEST(SessionAnatomyTest, TheCubeIsSavedAndComesBackWithAReload) {
    AnatomySession run;
    EXPECT_EQ(run.run(), QStringList());
    const std::vector<uint8_t> cube = run.anatomy().functional.volume.cube;
    EXPECT_GT(*std::ranges::max_element(cube), 200);
    EXPECT_EQ(run.saved("_EPI.vmr"),
              QByteArray("\0\1\0\1\0\1", 6) +
                  QByteArray(reinterpret_cast<const char*>(cube.data()), qsizetype(cube.size())));
    EXPECT_EQ(run.saved(".amr").left(4), QByteArray("\6\0BM", 4)) << "six images";
    ASSERT_TRUE(run.session.reloadData());
    EXPECT_EQ(run.anatomy().functional.volume.cube, cube);
    EXPECT_TRUE(run.anatomy().functional.mapping && run.anatomy().anatomical.mapping);
    // One that was changed is shown as it is; one that is damaged is made anew.
    run.put("results/Simulation-1_EPI.vmr", vmrWith(1, 2, 3));
    ASSERT_TRUE(run.session.reloadData());
    EXPECT_EQ(run.anatomy().functional.volume.cube[cubeIndex(1, 2, 3)], 200);
    run.put("results/Simulation-1_EPI.vmr", "short");
    ASSERT_TRUE(run.session.reloadData());
    EXPECT_EQ(run.anatomy().functional.volume.cube, cube);
    EXPECT_EQ(run.messages.shown(), run.messages.shownModeless());
}

TEST(SessionAnatomyTest, TheOperatorsAnatomyHoldsForTheSeriesOfSettingsFiles) {
    AnatomySession run;
    run.setOverlay(0, {});
    run.put("other.vmr", vmrWith(10, 20, 30));
    run.put("other.pos", anatomyPositions());
    SessionAnatomy& anatomy = run.session.anatomy;
    EXPECT_FALSE(anatomy.load(run.folder.filePath("missing.vmr")));
    EXPECT_EQ(anatomy.loadedFile(), "");
    EXPECT_TRUE(anatomy.load(run.folder.filePath("other.vmr")));
    EXPECT_EQ(run.run(), QStringList());
    const auto isPlaced = [&] {
        return anatomy.hasAnatomy() && run.anatomy().anatomical.name == "other.vmr" &&
               run.anatomy().anatomical.mapping;
    };
    EXPECT_TRUE(isPlaced());
    EXPECT_TRUE(run.session.reloadData());
    EXPECT_TRUE(isPlaced());
    // Over the run in memory at once.
    int changes = 0;
    anatomy.changed = [&] { ++changes; };
    run.put("bare.vmr", vmrWith(1, 1, 1));
    EXPECT_TRUE(anatomy.load(run.folder.filePath("bare.vmr")));
    EXPECT_TRUE(run.messages.shownModeless().last().startsWith("INFO: The place of the anatomy"));
    EXPECT_FALSE(run.anatomy().anatomical.mapping);
    EXPECT_EQ(run.anatomy().shown, ShownCube::Anatomical);
    EXPECT_EQ(run.session.requests.pendingOverlayVMR, 1);
    EXPECT_EQ(changes, 1);
    run.session.settings.settingsFilePath = run.folder.filePath("Simulation-2.vco");
    EXPECT_EQ(anatomy.loadedFile(), run.folder.filePath("bare.vmr"));
    run.session.settings.settingsFilePath = run.folder.filePath("Another-2.vco");
    EXPECT_EQ(anatomy.loadedFile(), "");
}

TEST(SessionAnatomyTest, VolumesOfInterestBecomeRegionsWithTheirMean) {
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

TEST(SessionAnatomyTest, ARunIsExportedWithItsMapsAndMask) {
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

TEST(SessionAnatomyTest, ARunIsPlayedAgainWithoutItsAnatomy) {
    AnatomySession run;
    EXPECT_EQ(run.run(), QStringList());
    ASSERT_TRUE(QFile::remove(run.folder.filePath("anatomy.vmr")));
    PlayOptions options;
    options.path = run.folder.filePath("results/Simulation-1.fmr");
    options.settingsFile = run.folder.filePath("Simulation-1.vco");
    options.targetFolder = run.folder.filePath("again/");
    options.atOnce = true;
    ASSERT_TRUE(run.session.playSavedRun(options, true));
    EXPECT_EQ(run.session.report.currentVolume, 23);
    EXPECT_FALSE(run.session.anatomy.hasAnatomy());
    EXPECT_TRUE(run.session.anatomy.hasFunctionalCube());
}
