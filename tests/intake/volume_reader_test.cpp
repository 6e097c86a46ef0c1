// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/volume_reader.h"

#include "intake_run.h"

#include <numeric>

namespace {

std::vector<uint16_t> counted(size_t count, int first = 0) {
    std::vector<uint16_t> samples(count);
    std::iota(samples.begin(), samples.end(), uint16_t(first));
    return samples;
}

std::vector<int> valuesOf(const Volume& volume) {
    return {volume.span().begin(), volume.span().end()};
}

// Two slices of 1 x 2 samples, side by side in a mosaic of 2 x 2.
struct MosaicRun : IntakeRun {
    MosaicRun() : IntakeRun("SIEMENS_DICOM_MOSAIC", 1, 2, 2) {
        setMosaic(2, 2);
        settings.DicomFirstVolumeNr = 7;
        settings.DicomFirstImageNr = 10;
    }
    static QByteArray file(int first, ByteOrder order = ByteOrder::Little) {
        return DicomBytes(order).meta().pixels(counted(4, first)).bytes;
    }
    const QString name = "run-0007-0010.dcm"; ///< of the first measured volume
};

// Two slices of 2 x 1 samples.
struct SliceRun : IntakeRun {
    SliceRun() : IntakeRun("DICOM", 2, 1, 2) { settings.DicomFirstVolumeNr = 5; }
    static QByteArray file(int first, ByteOrder order = ByteOrder::Little) {
        return DicomBytes(order).meta().pixels(counted(2, first)).bytes;
    }
    const QString name = "run-0005-0001.dcm"; ///< of the first slice
};

const QString tooShort =
    "ERROR: File \"%1\" holds less image data than stated in the settings file !";

TEST(MosaicReader, NamesCountImagesBehindTheSkippedOnes) {
    MosaicRun run;
    run.write("run-0007-0010.dcm", MosaicRun::file(100));
    run.write("run-0007-0012.dcm", MosaicRun::file(200));
    run.write("run-0007-0014.dcm", MosaicRun::file(0x0301, ByteOrder::Big));
    const auto reader = run.reader();
    ASSERT_TRUE(reader->readFirstVolume());
    EXPECT_EQ(valuesOf(run.project.firstVolume), (std::vector{100, 102, 101, 103}));
    EXPECT_EQ(run.project.FirstDataSourceFile, "run-0007-0010.dcm");
    ASSERT_TRUE(reader->readVolume(0));
    EXPECT_EQ(valuesOf(run.project.volumes[0]), (std::vector{200, 202, 201, 203}));
    EXPECT_FALSE(reader->readVolume(1)) << "not there";
    ASSERT_TRUE(reader->readVolume(2)) << "the byte order is that of the file";
    EXPECT_EQ(valuesOf(run.project.volumes[2]), (std::vector{0x301, 0x303, 0x302, 0x304}));
    EXPECT_FALSE(reader->readVolume(3));
    EXPECT_FALSE(reader->readVolume(-1));
}

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
    const QByteArray exact = MosaicRun::file(1).leftJustified(400, '\0');
    run.write(run.name, exact + "x");
    run.pump.after(150, [&] { writeFile(other.filePath(run.name), exact); });
    run.messages.expect(MessageLevel::Warning, tooShort.arg(other.filePath(run.name)));
    EXPECT_FALSE(run.reader()->readFirstVolume());
    EXPECT_EQ(run.pump.milliseconds(), 230) << "nothing is missing from the file";
}

TEST(MosaicReader, EveryFailureHasItsMessage) {
    struct Case {
        QByteArray bytes;
        int matrixSizeX;
        int mosaicSize;
        QString message;
    };
    for (const auto& [bytes, matrixSizeX, mosaicSize, message] :
         {Case{"12345678", 1, 2,
               "ERROR: This file (\"%1\") is not a DICOM or ACR-NEMA file: Header does not contain "
               "\"begin-of-data\" key (7FE0,0010) !"},
          {DicomBytes().meta().pixels({1, 2, 3}).bytes, 1, 2, tooShort},
          // Smaller than any mosaic of these sizes for good.
          {DicomBytes().meta("1.2.840.10008.1.2.4.70").raw("12345678").bytes, 1, 200,
           "ERROR: File \"%1\" is compressed (transfer syntax 1.2.840.10008.1.2.4.70); export it "
           "uncompressed !"},
          {DicomBytes().meta().header(0x7FE0, 0x0010, "OB", 0xFFFFFFFF).raw("12345678").bytes, 1, 2,
           "ERROR: File \"%1\" is compressed (transfer syntax unknown); export it uncompressed !"},
          {MosaicRun::file(0), 0, 2,
           "ERROR: A mosaic of 2 x 2 does not hold 2 slices of 0 x 2 - check settings file !"},
          {MosaicRun::file(0), 3, 2,
           "ERROR: A mosaic of 2 x 2 does not hold 2 slices of 3 x 2 - check settings file !"}}) {
        MosaicRun run;
        run.settings.MatrixSizeX = matrixSizeX;
        run.setMosaic(mosaicSize, mosaicSize);
        run.write(run.name, bytes);
        run.messages.expect(MessageLevel::Warning,
                            QString(message).replace("%1", run.path(run.name)));
        EXPECT_FALSE(run.reader()->readFirstVolume());
    }
}

TEST(MosaicReader, TakesHeaderIntoTheProject) {
    MosaicRun run;
    const auto write = [&run](const char* maker) {
        run.write(run.name, DicomBytes()
                                .meta()
                                .element(0x0008, 0x0070, "LO", maker)
                                .element(0x0018, 0x0050, "DS", "3 ")
                                .element(0x0018, 0x0088, "DS", "3.5 ")
                                .element(0x0020, 0x0032, "DS", "-4\\-6\\10")
                                .element(0x0020, 0x0037, "DS", "1\\0\\0\\0\\0.6\\0.8 ")
                                .word(0x0028, 0x0010, 2)
                                .word(0x0028, 0x0011, 2)
                                .element(0x0028, 0x0030, "DS", "6\\4 ")
                                .pixels(counted(4))
                                .bytes);
    };
    write("Siemens ");
    ASSERT_TRUE(run.reader()->readHeaders());
    const FMRProject& project = run.project;
    EXPECT_EQ((std::array{project.pixelSizeX, project.pixelSizeY, project.sliceGap}),
              (std::array{4.0f, 6.0f, 0.5f}));
    EXPECT_FALSE(project.TimeResolutionVerified);
    EXPECT_TRUE(project.VoxelResolutionVerified);
    const FMRPositionInfo& position = project.position;
    EXPECT_EQ(position.positionInfoValid, 1);
    EXPECT_EQ((std::array{position.nrOfRows, position.nrOfColumns}), (std::array{2, 1}));
    EXPECT_EQ((std::array{position.fovRows, position.fovColumns}), (std::array{12.0f, 4.0f}));
    // No protocol block. From the corner 4 mm along rows and 6 mm along columns lies the centre of
    // the mosaic; the last slice is two distances along the normal (0, -0.8, 0.6) further.
    const Vector3 first{0, -2.4f, 14.8f};
    const Vector3 last{0, -8, 19};
    for (size_t i = 0; i < 3; ++i) {
        EXPECT_NEAR(position.sliceCenterFirst[i], first[i], 1e-5);
        EXPECT_NEAR(position.sliceCenterLast[i], last[i], 1e-5);
    }
    write("Other ");
    EXPECT_FALSE(run.reader()->readHeaders());
}

TEST(MosaicReader, SurvivesFilesCutAnywhere) {
    const QByteArray whole = DicomBytes(ByteOrder::Big)
                                 .meta()
                                 .element(0x0008, 0x0070, "LO", "Siemens ")
                                 .header(0x0008, 0x1140, "SQ", 0xFFFFFFFF)
                                 .header(0xFFFE, 0xE0DD, "", 0)
                                 .raw("alTR[0] = 2000000\n")
                                 .pixels(counted(4))
                                 .bytes;
    for (qsizetype size = 0; size <= whole.size(); ++size) {
        MosaicRun run;
        run.messages.acceptAnything();
        run.settings.timeOutMilliseconds = 0;
        run.write(run.name, whole.first(size));
        const auto reader = run.reader();
        EXPECT_EQ(reader->readFirstVolume(), size == whole.size());
        EXPECT_FALSE(reader->readHeaders()) << "no rows and columns";
    }
}

// A file that appears before it is whole, or that is locked for a moment, is waited for.
template<typename Run> void expectPatience() {
    const QByteArray whole = Run::file(0);
    struct Case {
        const char* what;
        QList<QByteArray> contents; ///< 5, 305, 605 milliseconds after the empty file; null: gone
        QString message;            ///< when the time-out has passed
    };
    for (const auto& [what, contents, message] :
         {Case{"growing", {whole.first(140), whole.chopped(1), whole}, {}},
          {"locked", {{}, {}, whole}, {}},
          {"never whole", {whole.first(140), whole.chopped(2), whole.chopped(1)}, tooShort},
          {"gone", {whole, {}, {}}, {}},
          {"locked for good", {{}, {}, {}}, "ERROR: Can not open file !"}}) {
        SCOPED_TRACE(what);
        Run run;
        run.write(run.name, "12345678");
        run.write("run-0005-0002.dcm", whole); // the other slice
        for (int i = 0; i < 3; ++i)
            run.pump.after(5 + 300 * i, [&run, content = contents[i]] {
                if (content.isNull())
                    QFile::remove(run.path(run.name));
                else
                    run.write(run.name, content);
            });
        if (!message.isEmpty())
            run.messages.expect(MessageLevel::Warning,
                                QString(message).replace("%1", run.path(run.name)));
        EXPECT_EQ(run.reader()->readFirstVolume(), message.isEmpty());
        EXPECT_GE(run.pump.milliseconds(), message.isEmpty() ? 0 : 1000);
        EXPECT_LE(run.pump.milliseconds(), 1150);
    }
}

TEST(MosaicReader, WaitsForAFileThatIsNotWholeYet) {
    expectPatience<MosaicRun>();
}

TEST(SliceReader, WaitsForAFileThatIsNotWholeYet) {
    expectPatience<SliceRun>();
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

TEST(SliceReader, FailsWithItsMessageForAFileWithoutKey) {
    SliceRun run;
    run.write(run.name, "");
    run.messages.expect(MessageLevel::Warning,
                        "ERROR: This file is not a DICOM or ACR-NEMA file: Header does not contain "
                        "\"begin-of-data\" key (7FE0,0010) !");
    EXPECT_FALSE(run.reader()->readFirstVolume());
}

} // namespace
