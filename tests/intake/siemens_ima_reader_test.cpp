// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/siemens_ima_header.h"
#include "intake/siemens_ima_names.h"
#include "raw_samples.h"
#include "support/test_data.h"

#include <limits>

namespace {

QByteArray ima(const QByteArray& samples) {
    return QByteArray(imaHeaderBytes, '\0') + samples;
}

struct NameCase {
    const char* type;
    bool mosaic;
    bool fixed;
    int patient;
    QStringList names; ///< of the first volume, then of the second analysed one
    std::vector<int> first;
    std::vector<int> second;
};

// Each file begins with ten times its place in the list.
TEST(SiemensImaReaders, NamesCountPatientsStudiesAndImages) {
    const NameCase cases[] = {
        {"SIEMENS_IMA",
         false,
         false,
         5,
         {"5-10-97.ima", "5-10-98.ima", "5-13-103.ima", "5-13-104.ima"},
         {10, 20},
         {30, 40}},
        {"SIEMENSIMA",
         false,
         true,
         5,
         {"5-10-97.ima", "5-10-98.ima", "5-11-103.ima", "5-11-104.ima"},
         {10, 20},
         {30, 40}},
        {"SIEMENS_IMA", true, false, 5, {"5-10-97.ima", "5-13-100.ima"}, {10, 11}, {20, 21}},
        {"SIEMENSIMA", true, true, 5, {"5-10-97.ima", "5-10-100.ima"}, {10, 11}, {20, 21}},
        {"SIEMENS_IMA", true, false, -1, {"-1-10-97.ima", "-1-0-100.ima"}, {10, 11}, {20, 21}},
        {"SIEMENSPIXELDATA", false, false, -1, {"vol097", "vol100"}, {11, 10}, {21, 20}},
    };
    for (const NameCase& given : cases) {
        IntakeRun run(given.type, 1, 1, 2);
        run.settings.SiemensMosaicSequence = given.mosaic;
        run.settings.SiemensFixedRunNumber = given.fixed;
        run.settings.SiemensPatientID = given.patient;
        run.settings.SiemensFirstStudyNr = 10;
        run.settings.SiemensFirstImageNr = 97;
        run.settings.philipsFilePrefix = "vol";
        run.setMosaic(2, 2);
        int place = 0;
        for (const QString& name : given.names) {
            const QByteArray samples = rawSamples(countedFrom(10 * ++place, 4));
            run.write(name, name.endsWith(".ima") ? ima(samples) : samples);
        }
        const auto reader = run.reader();
        ASSERT_TRUE(reader->readFirstVolume()) << given.type;
        EXPECT_EQ(run.project.FirstDataSourceFile, given.names.first());
        EXPECT_EQ(valuesOf(run.project.firstVolume), given.first) << given.type;
        ASSERT_TRUE(reader->readVolume(1)) << given.type;
        EXPECT_EQ(valuesOf(run.project.volumes[1]), given.second) << given.type;
        EXPECT_FALSE(reader->readVolume(0));
        EXPECT_FALSE(reader->readVolume(3)) << "there is no such volume";
    }
}

// Slices of 2 x 1 in a mosaic of 4 x 4: four tiles in the two upper rows of samples.
TEST(SiemensImaReaders, TwoMosaicsHaveTilesForEightOfTenSlices) {
    for (const QString type : {"SIEMENS_IMA", "SIEMENSPIXELDATA"})
        for (const ByteOrder order : {ByteOrder::Little, ByteOrder::Big}) {
            const bool headless = type == "SIEMENSPIXELDATA";
            IntakeRun run(type, 2, 1, 10);
            run.settings.SiemensMosaicSequence = true;
            run.setMosaic(4, 4);
            run.state.rawDataByteOrder = order;
            const auto write = [&](const QString& name, int first) {
                const QByteArray samples = rawSamples(countedFrom(first, 16), order);
                run.write(name, headless ? samples : ima(samples));
            };
            std::fill_n(run.project.firstVolume.data(), 20, int16_t(-1));
            write(headless ? "001" : "1-1-1.ima", 0);
            run.pump.after(1000, [&] { write(headless ? "101" : "1-1-101.ima", 100); });
            ASSERT_TRUE(run.reader()->readFirstVolume());
            EXPECT_EQ(run.pump.milliseconds(), 30 + 1000 + 30);
            const std::vector<int> forwards{0,   1,   2,   3,   4,   5,   6,  7,  100, 101,
                                            102, 103, 104, 105, 106, 107, -1, -1, -1,  -1};
            const std::vector<int> backwards{-1,  -1,  -1, -1, 106, 107, 104, 105, 102, 103,
                                             100, 101, 6,  7,  4,   5,   2,   3,   0,   1};
            EXPECT_EQ(valuesOf(run.project.firstVolume), headless ? backwards : forwards);
            EXPECT_EQ(filesPerVolume(run.settings), 3);
        }
}

TEST(SiemensImaReaders, MosaicsThatCannotHoldTheSlicesAreRefused) {
    struct Case {
        int side, columns, rows, slices;
        const char* refusal; ///< nullptr: the program ends
    };
    for (const auto& [side, columns, rows, slices, refusal] : {
             Case{1, 2, 1, 2, "1 x 1 does not hold 2 slices of 2 x 1"},
             Case{0, 2, 1, 2, "0 x 0 does not hold 2 slices of 2 x 1"},
             Case{-4, 2, 1, 2, "-4 x -4 does not hold 2 slices of 2 x 1"},
             Case{4, 0, 1, 2, "4 x 4 does not hold 2 slices of 0 x 1"},
             Case{4, 2, 1, 0, "4 x 4 does not hold 0 slices of 2 x 1"},
             Case{4, 2, 4, 3, "4 x 4 does not hold 3 slices of 2 x 4"},
             Case{std::numeric_limits<int>::max(), 2, 1, 2, nullptr},
         }) {
        IntakeRun run("SIEMENS_IMA", columns, rows, slices);
        RecordedProgramEnd end;
        run.settings.SiemensMosaicSequence = true;
        run.setMosaic(side, side);
        run.write("1-1-1.ima", ima(QByteArray(64, '\1')));
        if (refusal)
            run.messages.expect(MessageLevel::Warning, QString("ERROR: A mosaic of ") + refusal +
                                                           " - check settings file !");
        EXPECT_FALSE(run.reader()->readFirstVolume());
        EXPECT_EQ(end.statuses, refusal ? std::vector<int>() : std::vector{1});
    }
}

TEST(SiemensImaReaders, FirstListedFolderWithTheExactSizeIsWatched) {
    IntakeRun run("SIEMENS_IMA", 2, 1, 2);
    const QTemporaryDir other;
    run.settings.WatchFolder.clear();
    run.settings.watchFolderList = QStringList{run.folder.path(), other.path()};
    const QByteArray slice = ima(rawSamples({1, 2}));
    run.write("1-1-1.ima", slice + "x");
    run.write("1-1-2.ima", ima(rawSamples({8, 9})));
    writeFile(other.filePath("1-1-2.ima"), slice + "x");
    run.pump.after(150, [&] { writeFile(other.filePath("1-1-1.ima"), slice); });
    ASSERT_TRUE(run.reader()->readFirstVolume());
    EXPECT_EQ(valuesOf(run.project.firstVolume), (std::vector{1, 2, 1, 2}));
    EXPECT_EQ(run.state.watchFolder, other.path() + '/');
}

struct ImaHeader {
    double thickness = 4.0, fieldOfViewX = 192.0, fieldOfViewY = 256.0, factor = 0.25;

    [[nodiscard]] QByteArray bytes(QDataStream::ByteOrder order) const {
        QByteArray header(imaHeaderBytes, '\x7F');
        QDataStream stream(&header, QIODevice::ReadWrite);
        stream.setByteOrder(order);
        for (const auto& [offset, value] : {std::pair{1544, thickness},
                                            {3744, fieldOfViewX},
                                            {3752, fieldOfViewY},
                                            {4136, factor},
                                            {5000, 77.0},
                                            {5008, 88.0}}) {
            stream.device()->seek(offset);
            stream << value;
        }
        return header;
    }
};

// Pixel sizes, thickness and gap of a project that had 1, 9, 3 and 0.5.
std::vector<float> geometryFrom(const QByteArray& header, ByteOrder order) {
    FMRProject project;
    project.ResolutionX = 64;
    project.ResolutionY = 128;
    project.pixelSizeX = 1.0f;
    project.pixelSizeY = 9.0f;
    project.sliceThickness = 3.0f;
    project.sliceGap = 0.5f;
    parseSiemensIMAHeader(bytesOf(header), order, project);
    EXPECT_EQ(project.position.fovColumns, project.pixelSizeX == 1.0f ? 0 : 192.0f);
    EXPECT_EQ(project.position.fovRows, project.pixelSizeY == 9.0f ? 0 : 256.0f);
    return {project.pixelSizeX, project.pixelSizeY, project.sliceThickness, project.sliceGap};
}

TEST(SiemensImaHeader, FieldOfViewAndMatrixDecideAndNonsenseIsPassedBy) {
    using Geometry = std::vector<float>;
    const Geometry former{1.0f, 9.0f, 3.0f, 0.5f};
    const Geometry stated{3.0f, 2.0f, 4.0f, 1.0f};
    const QByteArray big = ImaHeader().bytes(QDataStream::BigEndian);
    EXPECT_EQ(geometryFrom(big, ByteOrder::Big), stated);
    EXPECT_EQ(geometryFrom(ImaHeader().bytes(QDataStream::LittleEndian), ByteOrder::Little),
              stated);
    EXPECT_EQ(geometryFrom(big, ByteOrder::Little), former);
    EXPECT_EQ(geometryFrom(big.left(1551), ByteOrder::Big), former);
    EXPECT_EQ(geometryFrom(big.left(4143), ByteOrder::Big), (Geometry{3.0f, 2.0f, 4.0f, 0.5f}));
    for (const double value : {0.0, -4.0, 1e300, double(NAN), double(INFINITY)}) {
        const ImaHeader lengths{value, value, value, 0.25};
        EXPECT_EQ(geometryFrom(lengths.bytes(QDataStream::BigEndian), ByteOrder::Big), former);
        const ImaHeader factor{4.0, 192.0, 256.0, value};
        EXPECT_EQ(geometryFrom(factor.bytes(QDataStream::BigEndian), ByteOrder::Big),
                  (Geometry{3.0f, 2.0f, 4.0f, value == 0.0 ? 0.0f : 0.5f}));
    }
}

TEST(SiemensImaHeader, MissingFileIsToldAndPreparationGoesOn) {
    for (const bool mosaic : {false, true}) {
        IntakeRun run("SIEMENS_IMA", 2, 1, 2);
        run.settings.SiemensMosaicSequence = mosaic;
        run.messages.expect(MessageLevel::Warning, "ERROR: Can not open .ima file !");
        EXPECT_TRUE(run.reader()->readHeaders());
    }
}

// Expected samples are those of the picture that comes with these files.
TEST(SiemensImaReaders, ScannerFiles) {
    const QString folder = scannerDataFolder() + "/old_formats/itk_test_siemens_scrubbed/";
    SKIP_WITHOUT(folder);
    IntakeRun run("SIEMENS_IMA", 4, 4, 6);
    run.state.watchFolder = folder;
    run.state.rawDataByteOrder = ByteOrder::Big;
    run.settings.SiemensPatientID = 3868;
    run.settings.SiemensFirstStudyNr = 2;
    run.settings.SiemensFirstImageNr = 100;
    run.project.sliceGap = 0.5f;
    ASSERT_TRUE(run.reader()->readFirstVolume());
    const std::vector<int> values = valuesOf(run.project.firstVolume);
    for (size_t i = 0; i < 96; ++i) {
        const int left = i / 16 < 3 ? 144 : 176;
        const int row = i % 16 / 8 == 0 ? left : left + 64;
        EXPECT_EQ(values[i], i % 4 < 2 ? row : row - 128) << i;
    }
    ASSERT_TRUE(run.reader()->readHeaders());
    EXPECT_EQ(run.project.pixelSizeX, 50.0f) << "200 mm over a matrix that was cut down";
    EXPECT_EQ(run.project.sliceThickness, 1.2f);
    EXPECT_EQ(run.project.sliceGap, 0.5f) << "the factor is -19222: not known";
}

} // namespace
