// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/volume_reader.h"

#include "raw_samples.h"

namespace {

std::vector<uint16_t> counted(size_t count, int first = 0) {
    std::vector<uint16_t> samples(count);
    std::iota(samples.begin(), samples.end(), uint16_t(first));
    return samples;
}

// Two slices of 1 x 2 samples, side by side in a mosaic of 2 x 2.
struct MosaicRun : IntakeRun {
    MosaicRun() : IntakeRun("SIEMENS_DICOM_MOSAIC", 1, 2, 2) {
        setMosaic(2, 2);
        settings.DicomFirstVolumeNr = 7;
        settings.DicomFirstImageNr = 10;
    }
    const QString name = "run-0007-0010.dcm"; ///< of the first measured volume
};

// Two slices of 2 x 1 samples.
struct SliceRun : IntakeRun {
    SliceRun() : IntakeRun("DICOM", 2, 1, 2) { settings.DicomFirstVolumeNr = 5; }
    static QByteArray file(int first, ByteOrder order = ByteOrder::Little) {
        return DicomBytes(order).meta().pixels(counted(2, first)).bytes;
    }
};

TEST(MosaicReader, LastKeyCountsAndLoopSwapsTheSquareOfItsOwnResolution) {
    const QByteArray thumbnail = DicomBytes().pixels(counted(9)).bytes;
    for (const int resolution : {1, 0, -5, 46340}) {
        MosaicRun run;
        run.settings.SiemensMosaicResolution = resolution;
        run.settings.NrOfVolumesToSkip = 0;
        run.write(run.name, DicomBytes(ByteOrder::Big)
                                .meta()
                                .element(0x0009, 0x0010, "OB", thumbnail)
                                .pixels(counted(4, 0x0301))
                                .bytes);
        const auto reader = run.reader();
        ASSERT_TRUE(reader->readFirstVolume());
        EXPECT_EQ(valuesOf(run.project.firstVolume), (std::vector{0x301, 0x303, 0x302, 0x304}));
        ASSERT_TRUE(reader->readVolume(0));
        EXPECT_EQ(run.project.volumes[0][0], resolution > 0 ? 0x301 : 0x103);
        EXPECT_EQ(run.project.volumes[0][3], resolution > 1 ? 0x304 : 0x403);
    }
}

TEST(MosaicReader, ListedFoldersNeedTheExactSize) {
    MosaicRun run;
    QTemporaryDir other;
    run.settings.WatchFolder.clear();
    run.settings.watchFolderList = QStringList{run.folder.path(), other.path()};
    run.setMosaic(2, 100);
    // 400 bytes of file for 400 bytes of mosaic: found, but then short of samples.
    const QByteArray exact = DicomBytes().meta().pixels(counted(4)).bytes.leftJustified(400, '\0');
    run.write(run.name, exact + "x");
    run.pump.after(150, [&] { writeFile(other.filePath(run.name), exact); });
    run.messages.expect(
        MessageLevel::Warning,
        QString("ERROR: File \"%1\" holds less image data than stated in the settings file !")
            .arg(other.filePath(run.name)));
    EXPECT_FALSE(run.reader()->readFirstVolume());
    EXPECT_EQ(run.pump.milliseconds(), 230) << "nothing is missing from the file";
}

TEST(SliceReader, NamesCountVolumesAndSlicesWithAndWithoutPrefix) {
    SliceRun run;
    run.write("-0005-0001.dcm", SliceRun::file(10));
    run.write("run-0005-0002.dcm", SliceRun::file(20));
    run.write("run-0007-0001.dcm", SliceRun::file(30));
    // Each slice has the whole time-out.
    run.pump.after(990, [&] { run.write("run-0007-0002.dcm", SliceRun::file(40)); });
    const auto reader = run.reader();
    ASSERT_TRUE(reader->readFirstVolume());
    EXPECT_EQ(valuesOf(run.project.firstVolume), (std::vector{10, 11, 20, 21}));
    EXPECT_EQ(run.project.FirstDataSourceFile, "-0005-0001.dcm");
    ASSERT_TRUE(reader->readVolume(0));
    EXPECT_EQ(valuesOf(run.project.volumes[0]), (std::vector{30, 31, 40, 41}));
    EXPECT_FALSE(reader->readVolume(1));
    EXPECT_TRUE(reader->readHeaders()) << "nothing to read";
    EXPECT_EQ(run.project.position.positionInfoValid, 0);
}

TEST(SliceReader, FirstKeyCountsAndLoopGoesByTheSettledOrder) {
    SliceRun run;
    run.settings.NrOfVolumesToSkip = 0;
    run.settings.dicomImageNumberWidth = -1;
    const QByteArray two = SliceRun::file(0x0102, ByteOrder::Big) + SliceRun::file(7);
    run.write("run-5-1.dcm", two);
    run.write("run-5-2.dcm", two);
    const auto reader = run.reader();
    ASSERT_TRUE(reader->readFirstVolume());
    EXPECT_EQ(valuesOf(run.project.firstVolume), (std::vector{0x102, 0x103, 0x102, 0x103}));
    ASSERT_TRUE(reader->readVolume(0));
    EXPECT_EQ(run.project.volumes[0][0], 0x201);
    run.state.rawDataByteOrder = ByteOrder::Big;
    ASSERT_TRUE(reader->readVolume(0));
    EXPECT_EQ(run.project.volumes[0][0], 0x102);
}

} // namespace
