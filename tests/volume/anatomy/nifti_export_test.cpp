// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/files.h"
#include "volume/anatomy/coordinate_chain.h"
#include "volume/anatomy/nifti_anatomy.h"
#include "volume/anatomy/nifti_export.h"
#include "volume/volume_runs.h"

#include <QTemporaryDir>
#include <QtEndian>
#include <cmath>

namespace {

/// 5 x 4 x 3 voxels of 2.5 x 3 x 4.5 mm, whose first centre lies at (-30, 20, 45).
FMRProject tiltedRun(int nrOfVolumes) {
    FMRProject run = runOf(5, 4, 3, nrOfVolumes, [](int x, int y, int slice, int volume) {
        return 1000 * ((slice * 4 + y) * 5 + x) + volume;
    });
    run.pixelSizeX = 2.5f;
    run.sliceThickness = 4.0f;
    run.sliceGap = 0.5f;
    run.TR = 1500.0f;
    run.Prefix = "run-";
    FMRPositionInfo& position = run.position;
    position.positionInfoValid = 1;
    position.rowDirection = {0.9751703f, 0.1608814f, -0.1521842f};
    position.columnDirection = {-0.1976768f, 0.9421547f, -0.2706815f};
    // As in image headers: half of the field of view, 6.25 and 6 mm, from the first voxel.
    position.sliceCenterFirst = {-25.0912464f, 26.6584370f, 42.4247598f};
    position.sliceCenterLast = {-25.9897470f, 24.0120428f, 33.8696856f};
    return run;
}

class NiftiExport : public testing::Test {
protected:
    QString path(const char* name) const { return folder_.filePath(name); }

    RecordedProgress progress_;
    QString error_;

private:
    QTemporaryDir folder_;
};

float floatAt(const QByteArray& bytes, qsizetype place) {
    return qFromLittleEndian<float>(bytes.constData() + place);
}

TEST_F(NiftiExport, TheSeriesHasTheHeaderThatAnotherProgramWrites) {
    const FMRProject run = tiltedRun(2);
    ASSERT_TRUE(exportSeries(path("run.nii"), run, 2, progress_, error_));
    QByteArray written = contentOf(path("run.nii"));
    QByteArray expected =
        contentOf(VELO_SOURCE_DIR "/tests/volume/anatomy/exported_header.bin"); // with nibabel
    ASSERT_EQ(expected.size(), 348);
    ASSERT_EQ(written.size(), 352 + 2 * 2 * 60);
    const auto compareFloats = [&](qsizetype from, qsizetype count) {
        for (qsizetype place = from; place < from + 4 * count; place += 4)
            EXPECT_NEAR(floatAt(written, place), floatAt(expected, place), 1e-4f) << place;
        written.replace(from, 4 * count, QByteArray(4 * count, 0));
        expected.replace(from, 4 * count, QByteArray(4 * count, 0));
    };
    compareFloats(76, 5);                                  // sizes
    compareFloats(256, 18);                                // matrices
    written.replace(92 + 4, 12, expected.mid(92 + 4, 12)); // sizes that are not used
    for (qsizetype i = 0; i < expected.size(); ++i)
        EXPECT_EQ(int(written[i]), int(expected[i])) << i;
    for (qsizetype i = 0; i < 60; ++i) {
        const auto* samples = written.constData() + 352;
        EXPECT_EQ(qFromLittleEndian<uint16_t>(samples + 2 * i), 1000 * i);
        EXPECT_EQ(qFromLittleEndian<uint16_t>(samples + 120 + 2 * i), 1000 * i + 1);
    }
    EXPECT_EQ(progress_.values.back(), 100);
}

// By way of a file and the cube, a voxel of the run is found again where the run has it.
TEST_F(NiftiExport, ARunLiesRightOverItself) {
    FMRProject run = tiltedRun(1);
    std::ranges::fill(run.volumes[0], int16_t(0));
    run.volumes[0][(2 * 4 + 1) * 5 + 3] = 900; // column 3, row 1, slice 2
    ASSERT_TRUE(exportSeries(path("run.nii.gz"), run, 1, progress_, error_));
    EXPECT_TRUE(contentOf(path("run.nii.gz")).startsWith("\x1f\x8b"));
    VMRVolume anatomy;
    ASSERT_TRUE(loadNiftiAnatomy(path("run.nii.gz"), anatomy));
    const auto alignment =
        computeHeaderAlignment(anatomy.position, centredOnGrid(run.position, run), C3dMatrix());
    ASSERT_TRUE(alignment);
    const auto toRun = vmrToFunctionalMatrix(alignment->aligned, run);
    ASSERT_TRUE(toRun);
    const auto mapping = cubeMapping(*toRun, run, false);
    ASSERT_TRUE(mapping);
    const C3dVector place = mapping->functionalToCube * C3dVector{3.0f, 1.0f, 2.0f};
    const size_t index =
        cubeIndex(nearestVoxel(place.x), nearestVoxel(place.y), nearestVoxel(place.z));
    const auto brightest = std::ranges::max_element(anatomy.cube);
    EXPECT_EQ(size_t(brightest - anatomy.cube.begin()), index);
    EXPECT_GT(*brightest, 150);
}

TEST_F(NiftiExport, MapsAndMasksSayWhatTheyAre) {
    const FMRProject run = tiltedRun(1);
    const std::vector<float> first(60, 1.5f), second(60, -2.0f);
    NiftiMaps maps{{first, second}, {"Faces > Houses", "Rest"}, NiftiStatistic::F, 2.0f, 57.0f};
    ASSERT_TRUE(exportMaps(path("maps.nii"), run, maps, error_));
    const QByteArray written = contentOf(path("maps.nii"));
    EXPECT_EQ(written.mid(40, 10), QByteArray::fromHex("04000500040003000200"));
    EXPECT_EQ(written.mid(56, 8), QByteArray::fromHex("0000004000006442"));
    EXPECT_EQ(written.mid(68, 6), QByteArray::fromHex("040010002000"));
    EXPECT_EQ(written[123], 2); // mm, and no time
    EXPECT_STREQ(written.constData() + 148, "Faces > Houses; Rest");
    EXPECT_STREQ(written.constData() + 328, "Faces > Houses");
    EXPECT_EQ(floatAt(written, 352 + 240), -2.0f);

    maps.names = {QString::fromUtf8("Ängste über Höhe")}; // 19 bytes, of which 15 end inside of ö
    ASSERT_TRUE(exportMaps(path("maps.nii"), run, maps, error_));
    EXPECT_EQ(QString::fromUtf8(contentOf(path("maps.nii")).constData() + 328),
              QString::fromUtf8("Ängste über H"));

    std::vector<uint8_t> mask(60, 0);
    mask[7] = 1;
    ASSERT_TRUE(exportMask(path("mask.nii"), run, mask, error_));
    EXPECT_EQ(contentOf(path("mask.nii")).mid(352), byteArray(mask));
    maps.values.push_back(std::span(first).first(59));
    EXPECT_FALSE(exportMaps(path("maps.nii"), run, maps, error_));
}

TEST_F(NiftiExport, WithoutPositionsThereAreSizesOnly) {
    FMRProject run = tiltedRun(1);
    run.position.positionInfoValid = 0;
    run.pixelSizeY = 0.0f;
    ASSERT_TRUE(exportSeries(path("run.nii"), run, 1, progress_, error_));
    const QByteArray written = contentOf(path("run.nii"));
    EXPECT_EQ(written.mid(252, 4), QByteArray(4, 0));
    EXPECT_EQ(floatAt(written, 80), 2.5f);
    EXPECT_EQ(floatAt(written, 84), 1.0f);
}

TEST_F(NiftiExport, WhatIsNotWrittenLeavesTheOldFile) {
    const FMRProject run = tiltedRun(4);
    writeFile(path("run.nii"), "old");
    progress_.cancelAt = 50;
    EXPECT_FALSE(exportSeries(path("run.nii"), run, 4, progress_, error_));
    EXPECT_EQ(error_, "");
    EXPECT_FALSE(exportSeries(path("run.nii"), run, 5, progress_, error_));
    EXPECT_EQ(error_, "There are no volumes to be written.");
    EXPECT_EQ(contentOf(path("run.nii")), "old");
    progress_.cancelAt = 101;
    EXPECT_FALSE(exportSeries(path("missing/run.nii"), run, 4, progress_, error_));
    EXPECT_TRUE(error_.startsWith("Can not write")) << error_.toStdString();
}

} // namespace
