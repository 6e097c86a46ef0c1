// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/volume_reader.h"

#include "raw_samples.h"

namespace {

std::vector<uint16_t> counted(size_t count, int first = 0) {
    std::vector<uint16_t> samples(count);
    std::iota(samples.begin(), samples.end(), uint16_t(first));
    return samples;
}

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
        IntakeRun run("SIEMENS_DICOM_MOSAIC", 1, 2, 2);
        run.setMosaic(2, 2);
        run.settings.SiemensMosaicResolution = resolution;
        run.settings.NrOfVolumesToSkip = 0;
        run.write("run-0001-0001.dcm", DicomBytes(ByteOrder::Big)
                                           .meta()
                                           .element(0x0009, 0x0010, "OB", thumbnail)
                                           .pixels(counted(4, 0x0301))
                                           .bytes);
        const auto reader = run.reader();
        ASSERT_TRUE(reader->readFirstVolume() && reader->readVolume(0));
        EXPECT_EQ(valuesOf(run.project.firstVolume), (std::vector{0x301, 0x303, 0x302, 0x304}));
        EXPECT_EQ(run.project.volumes[0][0], resolution > 0 ? 0x301 : 0x103);
        EXPECT_EQ(run.project.volumes[0][3], resolution > 1 ? 0x304 : 0x403);
    }
}

TEST(SliceReader, TakesNamesWithAndWithoutPrefix) {
    SliceRun run;
    run.write("-0005-0001.dcm", SliceRun::file(10));
    // Each slice has the whole time-out.
    run.pump.after(990, [&] { run.write("run-0005-0002.dcm", SliceRun::file(20)); });
    const auto reader = run.reader();
    ASSERT_TRUE(reader->readFirstVolume());
    EXPECT_EQ(valuesOf(run.project.firstVolume), (std::vector{10, 11, 20, 21}));
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
