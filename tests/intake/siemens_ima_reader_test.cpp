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

TEST(SiemensImaReaders, NamesOfUnusualNumbers) {
    for (const auto& [mosaic, patient, files] : // of the first volume and the second analysed one
                                                // Of single slices a fixed study number rises all
                                                // the same, but not by the skipped ones.
         {std::tuple{false, 5, "5-10-97.ima 5-10-98.ima 5-11-103.ima 5-11-104.ima"},
          {true, -1, "-1-10-97.ima -1--1-100.ima"}}) {
        IntakeRun run("SIEMENSIMA", 1, 1, 2);
        run.settings.SiemensMosaicSequence = mosaic;
        run.settings.SiemensFixedRunNumber = true;
        run.settings.SiemensPatientID = patient;
        run.settings.SiemensFirstStudyNr = 10;
        run.settings.SiemensFirstImageNr = 97;
        run.setMosaic(2, 2);
        for (const QString& name : QString(files).split(' '))
            run.write(name, ima(rawSamples({1, 2, 3, 4})));
        const auto reader = run.reader();
        EXPECT_TRUE(reader->readFirstVolume() && reader->readVolume(1)) << files;
        EXPECT_EQ(run.pump.milliseconds(), mosaic ? 60 : 20) << "slices settle together";
        EXPECT_FALSE(reader->readVolume(0));
    }
}

// Slices of 2 x 1 in a mosaic of 4 x 4: four tiles in the two upper rows of samples.
TEST(SiemensImaReaders, TwoMosaicsHaveTilesForEightOfTenSlices) {
    for (const bool headless : {false, true}) {
        IntakeRun run(headless ? "SIEMENSPIXELDATA" : "SIEMENS_IMA", 2, 1, 10);
        run.settings.SiemensMosaicSequence = true;
        run.setMosaic(4, 4);
        std::fill_n(run.project.firstVolume.data(), 20, int16_t(-1));
        const QByteArray header(headless ? 0 : imaHeaderBytes, '\0');
        run.write(headless ? "001" : "1-1-1.ima", header + rawSamples(countedFrom(0, 16)));
        run.pump.after(1000, [&] {
            run.write(headless ? "101" : "1-1-101.ima", header + rawSamples(countedFrom(100, 16)));
        });
        ASSERT_TRUE(run.reader()->readFirstVolume());
        EXPECT_EQ(run.pump.milliseconds(), 30 + 1000 + 30);
        const std::vector<int> forwards{0,   1,   2,   3,   4,   5,   6,  7,  100, 101,
                                        102, 103, 104, 105, 106, 107, -1, -1, -1,  -1};
        const std::vector<int> backwards{-1,  -1,  -1, -1, 106, 107, 104, 105, 102, 103,
                                         100, 101, 6,  7,  4,   5,   2,   3,   0,   1};
        EXPECT_EQ(valuesOf(run.project.firstVolume), headless ? backwards : forwards);
        EXPECT_EQ(filesPerVolume(run.settings, run.project), 3);
    }
}

TEST(SiemensImaReaders, MosaicsThatCannotHoldTheSlicesAreRefused) {
    for (const auto& [side, columns, refusal] :
         {std::tuple{-4, 2, "-4 x -4 does not hold 3 slices of 2 x 1 - check settings file !"},
          {4, 0, "4 x 4 does not hold 3 slices of 0 x 1 - check settings file !"},
          {std::numeric_limits<int>::max(), 2, ""}}) { // no memory: the program ends
        IntakeRun run("SIEMENS_IMA", columns, 1, 3);
        const RecordedProgramEnd end;
        run.settings.SiemensMosaicSequence = true;
        run.setMosaic(side, side);
        if (*refusal)
            run.messages.expectWarning(QString("ERROR: A mosaic of ") + refusal);
        EXPECT_FALSE(run.reader()->readFirstVolume());
        EXPECT_EQ(end.statuses, *refusal ? std::vector<int>() : std::vector{1});
    }
}

TEST(SiemensImaHeader, FieldOfViewAndMatrixDecide) {
    QByteArray header(imaHeaderBytes, '\0');
    EXPECT_FALSE(parseSiemensIMAHeader(bytesOf(header), ByteOrder::Big, {64, 128}).pixelSizeX);
    QDataStream stream(&header, QIODevice::ReadWrite);
    // Slice thickness, both fields of view, distance factor, a pixel size that is not used.
    for (const auto& [offset, value] :
         {std::pair{1544, 4.0}, {3744, 192.0}, {3752, 192.0}, {4136, 0.25}, {5000, 77.0}}) {
        stream.device()->seek(offset);
        stream << value;
    }
    const auto sizes = parseSiemensIMAHeader(bytesOf(header), ByteOrder::Big, {64, 128});
    EXPECT_EQ(sizes.pixelSizeX, 3.0f);
    EXPECT_EQ(sizes.pixelSizeY, 1.5f);
    EXPECT_EQ(sizes.sliceThickness, 4.0f);
    EXPECT_EQ(sizes.sliceGap, 1.0f);
    header.chop(1);
    EXPECT_FALSE(parseSiemensIMAHeader(bytesOf(header), ByteOrder::Big, {64, 128}).pixelSizeX);
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
    for (int i = 0; i < 96; ++i)
        EXPECT_EQ(run.project.firstVolume[size_t(i)],
                  (i < 48 ? 144 : 176) + (i % 16 < 8 ? 0 : 64) - (i % 4 < 2 ? 0 : 128));
    ASSERT_TRUE(run.reader()->readHeaders());
    EXPECT_EQ(run.project.pixelSizeX, 50.0f) << "200 mm over a matrix that was cut down";
    EXPECT_EQ(run.project.position.fovRows, 200.0f);
    EXPECT_EQ(run.project.sliceThickness, 1.2f);
    EXPECT_EQ(run.project.sliceGap, 0.5f) << "the factor is -19222: not known";
    run.settings.SiemensFirstStudyNr = 3;
    run.messages.expectWarning("ERROR: Can not open .ima file !");
    EXPECT_TRUE(run.reader()->readHeaders());
}

} // namespace
