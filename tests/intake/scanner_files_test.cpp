// Real files of scanners against what an independent reader found in them (make_expected.py).
// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake_run.h"
#include "support/test_data.h"

#include <QCryptographicHash>
#include <QDirIterator>

namespace {

struct Expected {
    QString name;
    QByteArray digest;
    QList<double> numbers;
    [[nodiscard]] int whole(int index) const { return int(numbers[index]); }
};

QList<Expected> expectedMosaics() {
    QFile file(VELO_SOURCE_DIR "/tests/intake/expected_mosaics.tsv");
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    QList<Expected> table;
    for (QByteArray line = file.readLine(); !line.isEmpty(); line = file.readLine()) {
        if (line.startsWith('#'))
            continue;
        const QList<QByteArray> fields = line.trimmed().split('\t');
        Expected row{fields[0], fields[1], {}};
        for (const QByteArray& number : fields.mid(2))
            row.numbers << number.toDouble();
        table << row;
    }
    return table;
}

QByteArray digestOf(const Volume& volume) {
    QByteArray bytes;
    for (const int16_t sample : volume.span())
        bytes.append(char(sample)).append(char(sample >> 8));
    return QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex();
}

void expectHeader(const FMRProject& project, const Expected& expected) {
    EXPECT_EQ(project.TR, expected.numbers[5]);
    EXPECT_EQ(project.InterSliceTime, expected.numbers[6]);
    EXPECT_EQ(project.TE, expected.numbers[7]);
    EXPECT_TRUE(project.TimeResolutionVerified);
    EXPECT_EQ(project.SliceAcquisitionOrder, expected.whole(8));
    EXPECT_EQ(project.SliceAcquisitionOrderVerified, expected.whole(8) != 0);
    const FMRPositionInfo& position = project.position;
    EXPECT_EQ(position.positionInfoValid, 1);
    QList<float> found{project.pixelSizeX, project.pixelSizeY, project.sliceThickness,
                       project.sliceGap};
    for (const Vector3& vector : {position.sliceCenterFirst, position.sliceCenterLast,
                                  position.rowDirection, position.columnDirection})
        found << vector[0] << vector[1] << vector[2];
    for (int i = 0; i < found.size(); ++i)
        EXPECT_NEAR(found[i], expected.numbers[9 + i], 1e-4) << i;
}

// The file under the name that the run expects first and, with nothing skipped, at volume 0.
bool place(IntakeRun& run, const QString& file) {
    run.settings.NrOfVolumesToSkip = 0;
    return QFile::link(QFileInfo(file).absoluteFilePath(), run.path("run-0001-0001.dcm"));
}

TEST(ScannerFiles, MosaicsAgreeWithAnIndependentReader) {
    SKIP_WITHOUT(scannerDataFolder());
    const QList<Expected> table = expectedMosaics();
    EXPECT_GT(table.size(), 100);
    for (const Expected& expected : table) {
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

TEST(ScannerFiles, WhatCanNotBeReadIsRefusedByName) {
    const QString folder = scannerDataFolder() + "/siemens_mosaic/";
    SKIP_WITHOUT(folder);
    QStringList files{scannerDataFolder() +
                      "/dicom_odd/one_mosaic_in_many_encodings/04_deflated.dcm"};
    for (const char* number : {"4", "5", "6", "7", "8", "9"})
        files << folder + "transfer_syntaxes/" + number + ".dcm";
    for (const QFileInfo& enhanced :
         QDir(folder + "enhanced_to_refuse").entryInfoList({"*.dcm", "*.img"}))
        files << enhanced.filePath();
    for (const QString& file : files) {
        SCOPED_TRACE(file.toStdString());
        IntakeRun run("SIEMENS_DICOM_MOSAIC", 64, 64, 35);
        ASSERT_TRUE(place(run, file));
        run.messages.acceptAnything();
        EXPECT_FALSE(run.reader()->readFirstVolume());
        EXPECT_FALSE(run.reader()->readHeaders());
        ASSERT_EQ(run.messages.shown().size(), 2);
        for (const QString& message : run.messages.shown())
            EXPECT_TRUE(message.contains("compressed") || message.contains("multi-frame"))
                << message.toStdString();
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
