// SPDX-License-Identifier: GPL-3.0-or-later
#include "raw_samples.h"
#include "support/test_data.h"

#include <QCryptographicHash>

namespace {

const QByteArray axial = "1\\0\\0\\0\\1\\0";

// Slices of 2 x 1 samples.
struct GeRun : IntakeRun {
    explicit GeRun(const QString& type, int slices = 3) : IntakeRun(type, 2, 1, slices) {
        settings.GESeriesNr = 10;
        settings.GEFirstImageNr = 4;
        EXPECT_TRUE(QDir(folder.path()).mkdir("s10"));
        state.watchFolder = path("s10");
    }
    static QByteArray file(int first, ByteOrder order = ByteOrder::Little) {
        return header(order).pixels({first, first + 1}).bytes;
    }
    static DicomBytes header(ByteOrder order = ByteOrder::Little) {
        return DicomBytes(order).meta();
    }
    void writeSlice(const QString& name, const QByteArray& bytes) { write("s10/" + name, bytes); }
};

TEST(GeXDicomReader, OnlyTheFirstVolumeCountsFromTheNumberOfTheSettings) {
    GeRun run("GE_X_DICOM", 2);
    for (const int count : {4, 5, 6})
        run.writeSlice(QString("i%1.MRDC.%2").arg(count + 10).arg(count), GeRun::file(10 * count));
    const auto reader = run.reader();
    ASSERT_TRUE(reader->prepare() && reader->readFirstVolume() && reader->readVolume(0));
    EXPECT_EQ(valuesOf(run.project.firstVolume), (std::vector{40, 41, 50, 51}));
    EXPECT_EQ(valuesOf(run.project.volumes[0]), (std::vector{50, 51, 60, 61}));
    EXPECT_EQ(run.pump.milliseconds(), 20) << "slices of a volume settle together";
}

TEST(GeDicomReaders, SamplesAreTheLastBytesOfAWholeFile) {
    for (const char* type : {"GE_X_DICOM", "GE_HDXT_DICOM"}) {
        GeRun run(type, 1);
        run.settings.GEFirstImageNr = 1;
        run.settings.NrOfVolumesToSkip = 0;
        run.writeSlice("i11.MRDC.1", // longer than the slice
                       GeRun::header(ByteOrder::Big).pixels({1, 2, 0x304, 0x405}).bytes);
        const auto reader = run.reader();
        ASSERT_TRUE(reader->prepare() && reader->readFirstVolume());
        EXPECT_EQ(valuesOf(run.project.firstVolume), (std::vector{0x304, 0x405}));
        // The loop uses the byte order of the run.
        ASSERT_TRUE(reader->readVolume(0));
        EXPECT_EQ(run.project.volumes[0][0], 0x403);
        run.state.rawDataByteOrder = ByteOrder::Big;
        ASSERT_TRUE(reader->readVolume(0));
        EXPECT_EQ(run.project.volumes[0][0], 0x304);
    }
}

TEST(GeHdxtDicomReader, SettlesTheWatchFolder) {
    for (const auto& [series, watched, firstFile] :
         {std::tuple{QStringList{"e7/s3", "e7/s12", "e7/x99"}, "e7", "e7/s12/i13.MRDC.1"},
          {{"e7/s3", "e7/s03", "e7/study"}, "e7//", "e7/s03/i4.MRDC.1"},
          {{"s12b/s20"}, "s12b/", "s12b/i13.MRDC.1"}}) {
        GeRun run("GE_HDXT_DICOM", 1);
        for (const QString& name : series)
            ASSERT_TRUE(QDir(run.folder.path()).mkpath("w/" + name));
        run.state.watchFolder = run.path("w/") + watched;
        const auto reader = run.reader();
        ASSERT_TRUE(reader->prepare());
        run.write(QString("w/") + firstFile, GeRun::file(1));
        EXPECT_TRUE(reader->readFirstVolume()) << firstFile;
        run.state.watchFolder = run.path("e7/13");
        run.messages.expectWarning("Wrong watch folder specified for GE Signa HDxt data. The watch "
                                   "folder must point to a exam or series folder.");
        EXPECT_FALSE(reader->prepare());
    }
}

struct Geometry {
    QByteArray position = "-10\\-20\\5";
    QByteArray orientation = axial;
    QByteArray lastPosition = "-10\\-20\\13";
    uint16_t columns = 2;

    [[nodiscard]] QByteArray file(const QByteArray& corner) const {
        DicomBytes set = GeRun::header(ByteOrder::Big);
        set.element(0x0018, 0x0050, "DS", "3 ").element(0x0018, 0x0088, "DS", "4 ");
        if (!corner.isEmpty())
            set.element(0x0020, 0x0032, "DS", corner + QByteArray(corner.size() % 2, ' '));
        set.element(0x0020, 0x0037, "DS", orientation + ' ');
        set.word(0x0028, 0x0010, 1).word(0x0028, 0x0011, columns);
        return set.element(0x0028, 0x0030, "DS", "3.2\\1.7 ").pixels({1, 2}).bytes;
    }
};

void writeVolume(GeRun& run, const Geometry& geometry) {
    run.settings.GEFirstImageNr = 1;
    // Of the type that takes any order, the last slice comes before the middle one.
    const bool anyOrder = run.settings.documentDataType == "GE_HDXT_DICOM";
    run.writeSlice("i11.MRDC.1", geometry.file(geometry.position));
    run.writeSlice(anyOrder ? "i12.MRDC.3" : "i13.MRDC.3", geometry.file(geometry.lastPosition));
    run.writeSlice(anyOrder ? "i13.MRDC.2" : "i12.MRDC.2", geometry.file("0\\0\\0"));
}

TEST(GeDicomReaders, HeadersGiveSizesAndOfOneTypePositions) {
    const char* noPosition = "ERROR - Can nor get DICOM slice position values!";
    const char* noOrientation = "ERROR - Can nor get DICOM slice orientation values!";
    const char* noFit =
        "ERROR - dimensions of DICOM file (1 x 64) do not match those in VCO file (1 x 2) !";
    const char* hdxt = "GE_HDXT_DICOM";
    const std::tuple<Geometry, const char*, const char*> cases[] = {
        {{}, nullptr, hdxt},
        {{}, nullptr, "GE_X_DICOM"},
        {{.columns = 64}, noFit, hdxt},
        {{.position = ""}, noPosition, hdxt},
        {{.orientation = "9\\0\\0\\0\\9\\0"}, noOrientation, hdxt}};
    for (const auto& [geometry, message, type] : cases) {
        SCOPED_TRACE(message ? message : type);
        GeRun run(type);
        // From another file; it must not be taken for that of this one.
        run.state.header.imagePositionText = "1\\2\\3";
        run.state.header.imageOrientationText = axial.toStdString();
        writeVolume(run, geometry);
        if (message)
            run.messages.expectWarning(message);
        const auto reader = run.reader();
        ASSERT_TRUE(reader->prepare() && reader->readFirstVolume());
        EXPECT_EQ(reader->readHeaders(), message == nullptr);
        const FMRProject& project = run.project;
        const FMRPositionInfo& position = project.position;
        const bool positions = !message && type == QString("GE_HDXT_DICOM");
        EXPECT_EQ(position.positionInfoValid, positions);
        EXPECT_EQ(run.state.rawDataByteOrder, ByteOrder::Big) << "from the header";
        if (message)
            continue;
        if (positions) {
            EXPECT_EQ(position.sliceCenterFirst, (Vector3{-8.3f, -18.4f, 5.0f}));
            EXPECT_EQ(position.sliceCenterLast, (Vector3{-8.3f, -18.4f, 13.0f}));
        }
        EXPECT_EQ(
            (std::array{project.pixelSizeX, project.pixelSizeY, project.sliceThickness,
                        project.sliceGap, position.fovColumns, position.fovRows}),
            (std::array{1.7f, 3.2f, 3.0f, 1.0f, positions ? 3.0f : 3.4f, positions ? 3.0f : 3.2f}));
    }
}

// Centres by NumPy from the corners that pydicom found, and the SHA-256 of its samples of the first
// three volumes in the order of their files, which here bear the numbers that the type expects.
TEST(GeHdxtDicomReader, ScannerFiles) {
    const QString series = scannerDataFolder() + "/ge_dicom/run_20_volumes/e123/s1925";
    SKIP_WITHOUT(series);
    IntakeRun run("GE_HDXT_DICOM", 64, 64, 18);
    run.settings.NrOfVolumesToSkip = 1;
    run.state.watchFolder = run.path("e123/s2862279/");
    ASSERT_TRUE(QDir().mkpath(run.state.watchFolder));
    const QFileInfoList files = QDir(series).entryInfoList(QDir::Files);
    for (int count = 1; count <= 3 * 18; ++count)
        ASSERT_TRUE(QFile::link(files.value(count - 1).absoluteFilePath(),
                                run.state.watchFolder +
                                    QString("i%1.MRDC.%2").arg(2862279 + count).arg(count)));
    const auto reader = run.reader();
    ASSERT_TRUE(reader->prepare() && reader->readFirstVolume() && reader->readHeaders());
    const FMRPositionInfo& position = run.project.position;
    EXPECT_EQ(position.fovColumns, 192.0f);
    EXPECT_EQ(run.project.pixelSizeY, 3.0f);
    EXPECT_EQ(position.columnDirection, (Vector3{-0.061137f, 0.937673f, -0.342098f}));
    const Vector3 first{-1.294096f, -36.4384928f, -46.5758808f};
    const Vector3 last{-0.302296f, -14.2434928f, 14.0832192f};
    for (size_t axis = 0; axis < 3; ++axis) {
        EXPECT_NEAR(position.sliceCenterFirst[axis], first[axis], 1e-4);
        EXPECT_NEAR(position.sliceCenterLast[axis], last[axis], 1e-4);
    }
    ASSERT_TRUE(reader->readVolume(0) && reader->readVolume(1));
    EXPECT_EQ(run.pump.milliseconds(), 30) << "slices of a volume settle together";
    QCryptographicHash hash(QCryptographicHash::Sha256);
    for (const std::span<const int16_t> volume :
         {run.project.firstVolume.span(), run.project.volumes[0], run.project.volumes[1]})
        hash.addData(QByteArray(reinterpret_cast<const char*>(volume.data()),
                                qsizetype(volume.size_bytes())));
    EXPECT_EQ(hash.result().toHex(),
              "9b8ed338ce0f4bbad710994e827a8a96bb47ca4306b502ff97c2f658a754b8a6");
}

} // namespace
