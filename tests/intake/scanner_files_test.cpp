// Real files of scanners against what an independent reader found in them.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "expected_mosaics.h"
#include "intake_run.h"
#include "support/test_data.h"

#include <QDirIterator>

namespace {

QByteArray digestOf(const Volume& volume) {
    QByteArray bytes;
    for (const int16_t sample : volume.span())
        bytes.append(char(sample)).append(char(sample >> 8));
    return digestOf(bytes);
}

void expectHeader(const FMRProject& project, const ExpectedMosaic& expected) {
    const FMRPositionInfo& position = project.position;
    EXPECT_EQ(position.positionInfoValid, 1);
    EXPECT_TRUE(project.TimeResolutionVerified);
    EXPECT_EQ(project.SliceAcquisitionOrderVerified, expected.whole(8) != 0);
    QList<float> found{project.TR,
                       project.InterSliceTime,
                       project.TE,
                       float(project.SliceAcquisitionOrder),
                       project.pixelSizeX,
                       project.pixelSizeY,
                       project.sliceThickness,
                       project.sliceGap};
    for (const Vector3& vector : {position.sliceCenterFirst, position.sliceCenterLast,
                                  position.rowDirection, position.columnDirection})
        found << vector[0] << vector[1] << vector[2];
    for (int i = 0; i < found.size(); ++i)
        EXPECT_NEAR(found[i], expected.numbers[5 + i], 1e-4) << i;
}

// The file under the name that the run expects first and, with nothing skipped, at volume 0.
bool place(IntakeRun& run, const QString& file) {
    run.settings.NrOfVolumesToSkip = 0;
    return QFile::link(QFileInfo(file).absoluteFilePath(), run.path("run-0001-0001.dcm"));
}

TEST(ScannerFiles, MosaicsAgreeWithAnIndependentReader) {
    SKIP_WITHOUT(scannerDataFolder());
    const QList<ExpectedMosaic> table = expectedMosaics();
    EXPECT_GT(table.size(), 100);
    for (const ExpectedMosaic& expected : table) {
        SCOPED_TRACE(expected.name.toStdString());
        IntakeRun run("SIEMENS_DICOM_MOSAIC", expected.whole(2), expected.whole(3),
                      expected.whole(4));
        run.setMosaic(expected.whole(0), expected.whole(1));
        ASSERT_TRUE(place(run, scannerDataFolder() + '/' + expected.name));
        const auto reader = run.reader();
        EXPECT_TRUE(reader->readFirstVolume());
        EXPECT_EQ(digestOf(run.project.firstVolume), expected.digest);
        EXPECT_TRUE(reader->readVolume(0));
        EXPECT_EQ(digestOf(run.project.volumes[0]), expected.digest);
        EXPECT_TRUE(reader->readHeaders());
        expectHeader(run.project, expected);
    }
}

TEST(ScannerFiles, NoFileOfAnyKindIsTooOdd) {
    SKIP_WITHOUT(scannerDataFolder());
    int nrOfVolumes = 0;
    for (const char* folder : {"dicom_odd", "ge_dicom", "siemens_single_slice", "old_formats"})
        for (QDirIterator file(scannerDataFolder() + '/' + folder, QDir::Files,
                               QDirIterator::Subdirectories);
             file.hasNext();) {
            IntakeRun run("DICOM", 64, 64, 1);
            ASSERT_TRUE(place(run, file.next()));
            run.messages.acceptAnything();
            nrOfVolumes += run.reader()->readFirstVolume();
            DicomIdentifiers identifiers;
            static_cast<void>(readDicomIdentifiers(file.filePath(), identifiers));
            static_cast<void>(
                readDicomHeader(file.filePath(), run.state.header, run.state.rawDataByteOrder));
        }
    EXPECT_GT(nrOfVolumes, 30);
}

} // namespace
