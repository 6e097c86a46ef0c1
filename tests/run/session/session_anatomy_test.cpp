// Anatomy in whole sessions: its place over the run, its files, what can't be read.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/document/amr_file.h"
#include "run/session/anatomy_session.h"

namespace {

/// They agree to a hundredth of a voxel or a millimetre.
template<typename Found, typename Expected>
void expectNear(const std::optional<Found>& found, const Expected& expected) {
    ASSERT_TRUE(found);
    EXPECT_NEAR(found->x, expected.x, 0.01);
    EXPECT_NEAR(found->y, expected.y, 0.01);
    EXPECT_NEAR(found->z, expected.z, 0.01);
}

void expectCubePoint(const AnatomicalCube& cube, const C3dVector& voxel, const Point& expected) {
    const std::optional<C3dVector> point = cube.cubePlace(voxel);
    expectNear(point, expected);
    expectNear(cube.functionalPlace(point.value_or(C3dVector())), voxel);
}

/// Where the cube shows that a voxel of the run lies in the scanner.
void expectInScanner(const AnatomicalCube& cube, const C3dVector& voxel, const Point& expected) {
    const std::optional<C3dVector> point = cube.cubePlace(voxel);
    ASSERT_TRUE(point);
    expectNear(spaceCoordinates(cube.spaces, *point).scanner, expected);
}

/// The voxel of the run under a cross.
std::optional<C3dVector> under(const AnatomicalCube& cube, const CubeVoxel& cross) {
    return cube.functionalPlace({float(cross.x), float(cross.y), float(cross.z)});
}

} // namespace

TEST(SessionAnatomyTest, APositionFilePlacesTheRunInTheAnatomy) {
    AnatomySession run;
    EXPECT_FALSE(run.session.anatomy.hasAnatomy() || run.session.anatomy.hasFunctionalCube());
    EXPECT_EQ(run.run(), QStringList());
    ASSERT_TRUE(run.session.anatomy.hasAnatomy() && run.session.anatomy.hasFunctionalCube());
    EXPECT_EQ(run.session.requests.pendingOverlayVMR, 0);
    const AnatomicalCube& cube = run.anatomy().anatomical;
    EXPECT_EQ(cube.volume.cube[cubeIndex(100, 110, 120)], 200);
    const Point place = AnatomySession::placeInScanner(20, 11, 4);
    const Point expected = inAnatomy(place);
    expectCubePoint(cube, {20, 11, 4}, expected);
    expectInScanner(cube, {20, 11, 4}, place);
    expectInScanner(run.anatomy().functional, {20, 11, 4}, place);
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
    const auto there = under(run.anatomy().functional, run.anatomy().cross[0]);
    EXPECT_NEAR(there->x, 8.0, 0.25);
    EXPECT_NEAR(there->z, 1.0, 0.3);
}

TEST(SessionAnatomyTest, ReverseOrderHoldsWhereHeadersDoNotStateTheOrder) {
    AnatomySession run;
    run.flipSlices();
    EXPECT_EQ(run.run(), QStringList());
    const Point place = AnatomySession::placeInScanner(20, 11, 5 - 4);
    expectCubePoint(run.anatomy().anatomical, {20, 11, 4}, inAnatomy(place));
    expectInScanner(run.anatomy().functional, {20, 11, 4}, place);
}

TEST(SessionAnatomyTest, ImageHeadersPlaceTheRunInTheAnatomy) {
    AnatomySession run(ScannerType::GeHdxtDicom);
    run.flipSlices(); // of no effect
    EXPECT_EQ(run.run(), QStringList());
    // The headers give the centre of the first voxel.
    const Point slice = run.scan.geometry().sliceCentreInScanner(3);
    const Point expected =
        inAnatomy({slice.x + (9 - 16) * 6.0, slice.y + (21 - 16) * 6.0, slice.z});
    expectCubePoint(run.anatomy().anatomical, {9, 21, 3}, expected);
    // Also when the saved run is played again, for which its anatomy need not be there.
    PlayOptions options;
    options.path = run.folder.filePath("results/Simulation-1.fmr");
    options.settingsFile = run.folder.filePath("Simulation-1.vco");
    options.targetFolder = run.folder.filePath("again/");
    ASSERT_TRUE(run.session.playSavedRun(options, true));
    expectCubePoint(run.anatomy().anatomical, {9, 21, 3}, expected);
    ASSERT_TRUE(QFile::remove(run.folder.filePath("anatomy.vmr")));
    ASSERT_TRUE(run.session.playSavedRun(options, true));
    EXPECT_EQ(run.session.report.currentVolume, 23);
    EXPECT_FALSE(run.session.anatomy.hasAnatomy());
    EXPECT_TRUE(run.session.anatomy.hasFunctionalCube());
}

TEST(SessionAnatomyTest, WithoutCentresOfTheRunTheAnatomyIsShownWithoutMaps) {
    AnatomySession run;
    writeFile(run.watchFolder() + run.session.settings.philipsFilePrefix + "00001.pos",
              anatomyPositions(2));
    const QStringList told = run.run();
    ASSERT_EQ(told.size(), 1);
    EXPECT_TRUE(told.first().contains("00001.pos\" is of version 2"));
    EXPECT_EQ(run.messages.shownModeless(), told);
    EXPECT_TRUE(run.session.anatomy.hasAnatomy());
    EXPECT_FALSE(run.anatomy().anatomical.mapping);
    EXPECT_FALSE(run.anatomy().functional.spaces.cubeToScanner);
    EXPECT_EQ(run.session.requests.pendingOverlayVMR, 0);
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
        EXPECT_EQ(run.anatomy().vmrPosition.positionInfoValid, 0);
        EXPECT_EQ(run.session.settings.OverlayOnVMRMode, 0);
        EXPECT_EQ(run.session.requests.pendingOverlayVMR, -1);
        EXPECT_EQ(run.session.report.currentVolume, 23);
    }
}

TEST(SessionAnatomyTest, TalairachSpaceIsUndoneOnTheWayToTheRun) {
    AnatomySession run;
    run.put("shift.trf", "FileVersion: 5\nDataFormat: Matrix\n1 0 0 2\n0 1 0 -3\n0 0 1 4\n0 0 0 1\n"
                         "TransformationType: 2\nCoordinateSystem: 0\n");
    run.put("anatomy.vmr", vmrWith(100, 110, 120) + vmrEnd(neurologicalConvention));
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
    const auto shown = spaceCoordinates(run.anatomy().anatomical.spaces, {128, 128, 140});
    EXPECT_EQ(shown.talairach->x, 12.0f);
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
    run.session.anatomy.changeWindow(10, 90);
    ASSERT_TRUE(run.session.reloadData());
    EXPECT_EQ(run.anatomy().windowLow, 10);
    EXPECT_EQ(run.anatomy().windowHigh, 90);
    EXPECT_EQ(run.anatomy().functional.name, "First volume");
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

TEST(SessionAnatomyTest, AReloadedRunShowsTheImagesThatItsProjectNames) {
    AnatomySession run;
    EXPECT_EQ(run.run(), QStringList());
    const QString project = run.folder.filePath("results/Simulation-1.fmr");
    run.put(
        "results/Simulation-1.fmr",
        contentOf(project).replace("\"<none>\"\nShowAMRFile", "\"/old/back.amr\"\nShowAMRFile"));
    const auto slices = [&]() -> const std::vector<QImage>& {
        return run.session.functionalDocument->slices.SlicePixmaps;
    };
    const std::vector<QImage> measured = slices();
    for (const int side : {32, 31}) {
        QImage white(side, side, QImage::Format_RGB32);
        white.fill(Qt::white);
        ASSERT_TRUE(writeAMR(run.folder.filePath("results/back.amr"), std::vector(6, white), {},
                             significanceColors()));
        ASSERT_TRUE(run.session.reloadData());
        EXPECT_EQ(slices()[5], side == 32 ? white : measured[5]);
    }
    EXPECT_TRUE(run.messages.shown().last().contains("not of the size"));
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
    EXPECT_TRUE(run.messages.shownModeless().last().endsWith("shown with the next run."));
    bool loadedInRun = false;
    ProbeListener probe(run.session.listeners, ListenerPlace::Plots);
    probe.onStep = [&](VolumeStep step, const VolumeAtHand& hand) {
        if (step == VolumeStep::Plots && hand.volume == 0)
            loadedInRun = anatomy.load(run.folder.filePath("anatomy.vmr"));
        return true;
    };
    EXPECT_EQ(run.run(), QStringList("This has to wait until the run has ended and is saved."));
    EXPECT_FALSE(loadedInRun);
    const auto isPlaced = [&] {
        return anatomy.hasAnatomy() && run.anatomy().anatomical.name == "other.vmr" &&
               run.anatomy().anatomical.mapping;
    };
    EXPECT_TRUE(isPlaced());
    EXPECT_TRUE(run.session.reloadData());
    EXPECT_TRUE(isPlaced());
    // Over the run in memory at once, with the cross on the same voxel of the run.
    anatomy.functionalVoxelClicked(20, 11, 4);
    run.put("near.vmr", vmrWith(1, 1, 1));
    run.put("near.pos", posText({-94.5, -30.0, 5.0}, {160.5, -30.0, 5.0}, {0, 1, 0}, {0, 0, -1}));
    EXPECT_TRUE(anatomy.load(run.folder.filePath("near.vmr")));
    const auto voxel = under(run.anatomy().anatomical, run.anatomy().cross[1]);
    ASSERT_TRUE(voxel);
    EXPECT_EQ((std::array{nearestVoxel(voxel->x), nearestVoxel(voxel->y), nearestVoxel(voxel->z)}),
              (std::array{20, 11, 4}));
    int changes = 0;
    anatomy.changed = [&] { ++changes; };
    QByteArray atlasSpace = vmrEnd(1);
    atlasSpace.back() = 1;
    run.put("bare.vmr", vmrWith(1, 1, 1) + atlasSpace);
    EXPECT_TRUE(anatomy.load(run.folder.filePath("bare.vmr")));
    EXPECT_TRUE(run.messages.shownModeless().last().startsWith("INFO: The place of the anatomy"));
    EXPECT_FALSE(run.anatomy().anatomical.mapping);
    EXPECT_EQ(run.anatomy().anatomical.spaces.cube, CubeSpace::Talairach);
    EXPECT_EQ(run.anatomy().shown, ShownCube::Anatomical);
    EXPECT_EQ(run.anatomy().cross[1], CubeVoxel());
    EXPECT_EQ(run.session.requests.pendingOverlayVMR, 1);
    EXPECT_EQ(changes, 1);
    run.session.settings.settingsFilePath = run.folder.filePath("Simulation-2.vco");
    EXPECT_EQ(anatomy.loadedFile(), run.folder.filePath("bare.vmr"));
    run.session.settings.settingsFilePath = run.folder.filePath("Another-2.vco");
    EXPECT_EQ(anatomy.loadedFile(), "");
}
