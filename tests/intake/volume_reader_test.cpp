// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/volume_reader.h"

#include "raw_samples.h"

TEST(MosaicReader, LastKeyCountsAndLoopSwapsTheSquareOfItsOwnResolution) {
    const QByteArray thumbnail = DicomBytes().pixels(countedFrom(0, 9)).bytes;
    for (const int resolution : {1, 0, -5, 46340}) {
        IntakeRun run("SIEMENS_DICOM_MOSAIC", 1, 2, 2);
        run.setMosaic(2, 2);
        run.settings.SiemensMosaicResolution = resolution;
        run.settings.dicomImageNumberWidth = -1;
        run.settings.NrOfVolumesToSkip = 0;
        run.write("run-1-1.dcm", DicomBytes(ByteOrder::Big)
                                     .meta()
                                     .element(0x0009, 0x0010, "OB", thumbnail)
                                     .pixels(countedFrom(0x0301, 4))
                                     .bytes);
        const auto reader = run.reader();
        ASSERT_TRUE(reader->readFirstVolume() && reader->readVolume(0));
        EXPECT_EQ(valuesOf(run.project.firstVolume), (std::vector{0x301, 0x303, 0x302, 0x304}));
        EXPECT_EQ(run.project.volumes[0][0], resolution > 0 ? 0x301 : 0x103);
        EXPECT_EQ(run.project.volumes[0][3], resolution > 1 ? 0x304 : 0x403);
    }
}

// Names with and without the prefix; each slice has the full time-out.
TEST(SliceReader, FirstKeyCountsAndLoopGoesByTheSettledOrder) {
    IntakeRun run("DICOM", 2, 1, 2);
    run.settings.DicomFirstVolumeNr = 5;
    run.settings.NrOfVolumesToSkip = 0;
    const QByteArray two = DicomBytes(ByteOrder::Big).meta().pixels({0x102, 0x103}).bytes +
                           DicomBytes().meta().pixels({7, 8}).bytes;
    run.write("-0005-0001.dcm", two);
    run.pump.after(990, [&] { run.write("run-0005-0002.dcm", two); });
    const auto reader = run.reader();
    ASSERT_TRUE(reader->readFirstVolume());
    EXPECT_EQ(valuesOf(run.project.firstVolume), (std::vector{0x102, 0x103, 0x102, 0x103}));
    EXPECT_TRUE(reader->readHeaders()) << "nothing to read";
    EXPECT_EQ(run.project.position.positionInfoValid, 0);
    ASSERT_TRUE(reader->readVolume(0));
    EXPECT_EQ(run.project.volumes[0][0], 0x201);
    run.state.rawDataByteOrder = ByteOrder::Big;
    const StopWatch watch(run.pump);
    ASSERT_TRUE(reader->readVolume(0));
    EXPECT_EQ(watch.elapsed(), 10) << "slices of a volume settle together";
    EXPECT_EQ(run.project.volumes[0][0], 0x102);
}
