// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/analyze_header.h"
#include "raw_samples.h"
#include "support/test_data.h"

// Three slices of one sample; one volume is skipped.
TEST(GrowingFileReader, EachSliceOfTheFirstVolumeHasItsOwnWaitAndLaterOneEachVolume) {
    for (const int whole : {900, 2000}) {
        IntakeRun run("PHILIPS_REC", 1, 1, 3);
        run.settings.documentFirstFileName = run.path("run.rec");
        run.settings.NrOfVolumesToSkip = 1;
        run.state.rawDataByteOrder = ByteOrder::Big; // ignored here
        const auto grow = [&run](int milliseconds, size_t nrOfSamples) {
            run.pump.after(milliseconds, [&run, nrOfSamples] {
                run.write("run.rec", rawSamples(countedFrom(0x0102, nrOfSamples)));
            });
        };
        for (const int slice : {1, 2, 3})
            grow(900 * slice, size_t(slice));
        const auto reader = run.reader();
        ASSERT_TRUE(reader->readFirstVolume());
        EXPECT_EQ(valuesOf(run.project.firstVolume), (std::vector{0x104, 0x103, 0x102}));
        grow(100, 4);
        grow(whole, 6);
        EXPECT_EQ(reader->readVolume(0), whole < 1000);
        EXPECT_EQ(valuesOf(run.project.volumes[0]),
                  whole < 1000 ? (std::vector{0x107, 0x106, 0x105}) : std::vector(3, 0));
    }
}

// Sums of the slices of the last volume, from NumPy.
TEST(GrowingFileReader, ScannerFiles) {
    const QString folder = scannerDataFolder();
    SKIP_WITHOUT(folder);
    for (const auto& [type, name, columns, volume, sums] :
         {std::tuple{
              "PHILIPSRECDATA", "/philips/phantom_par_rec/phantom_EPI_asc_CLEAR_2_1.REC", 64, 2,
              std::vector{205032, 409165, 555657, 642881, 672535, 681201, 759962, 806839, 836937}},
          {"2DSEQ_MPI",
           "/bruker/1/pdata/1/2dseq",
           80,
           0,
           {16675647, 16707693, 17348885, 17035788, 17103388}}}) {
        IntakeRun run(type, columns, 64, int(sums.size()));
        run.settings.NrOfVolumesToSkip = volume;
        run.settings.documentFirstFileName = folder + name;
        ASSERT_TRUE(run.reader()->readVolume(0)) << name;
        const auto samples = run.project.volumes[0];
        for (size_t slice = 0; slice < sums.size(); ++slice) {
            const auto part = samples.subspan(slice * size_t(columns) * 64, size_t(columns) * 64);
            EXPECT_EQ(std::accumulate(part.begin(), part.end(), 0), sums[slice]);
        }
    }
}

// Two slices of 2 x 2 samples.
TEST(AnalyzeReader, NumbersLoseADigitAtThousandAndSlicesAreTransformed) {
    IntakeRun run("PHILIPS_ANALYZE_DRIN", 2, 2, 2);
    run.settings.ImageTransformation = 2;
    run.settings.philipsFilePrefix = "run_";
    run.settings.philipsFirstNumber = 997;
    const QByteArray image = rawSamples(countedFrom(1, 8));
    for (const char* name : {"run_00997.img", "run_00999.img", "run_1000.img"})
        run.write(name, image);
    run.write("run_1001.img", image.chopped(1));
    const auto reader = run.reader();
    ASSERT_TRUE(reader->readFirstVolume() && reader->readVolume(0) && reader->readVolume(1));
    EXPECT_EQ(valuesOf(run.project.volumes[1]), (std::vector{3, 4, 1, 2, 7, 8, 5, 6}));
    EXPECT_FALSE(reader->readVolume(2));
}

// Values from another reader of this format.
TEST(AnalyzeHeader, FieldsHaveTheirPlacesInBothByteOrders) {
    for (const bool big : {true, false}) {
        QByteArray bytes = QByteArray::fromHex(big ? "0000015C" : "5C010000");
        for (int i = 4; i < analyzeHeaderBytes; ++i)
            bytes += char((7 * i + 3) % 251);
        ByteOrder order = big ? ByteOrder::Little : ByteOrder::Big;
        AnalyzeHeader header;
        ASSERT_TRUE(parseAnalyzeHeader(bytesOf(bytes), order, header));
        EXPECT_EQ(order, big ? ByteOrder::Big : ByteOrder::Little);
        EXPECT_EQ(header.hk.extents, big ? -471141896 : -118363421);
        EXPECT_EQ(header.dime.dim[7], big ? -32119 : -30334);
        EXPECT_EQ(header.dime.pixdim[7], big ? -1.3987238289570715e+23f : -6.3326646426982034e+35f);
        EXPECT_EQ(header.dime.glmin, big ? 118363420 : 471141895);
        EXPECT_EQ(header.hist.exp_time[0], 't');
        EXPECT_EQ(header.hist.smin, big ? -1734367571 : -1381589096);
    }
}

TEST(AnalyzeHeader, ScannerFilesAndNone) {
    const QTemporaryDir folder;
    ScriptedMessages messages;
    QString order;
    AnalyzeHeader header;
    messages.expectWarning("ERROR: File *");
    writeFile(folder.filePath("short.hdr"), QByteArray(347, '\0'));
    EXPECT_FALSE(readAnalyzeHeader(folder.filePath("short.hdr"), order, header));
    messages.expectWarning("Can not open ANALYZE file !");
    EXPECT_FALSE(readAnalyzeHeader(folder.filePath("none.hdr"), order, header));
    const QString data = scannerDataFolder() + "/analyze75/both_byte_orders/";
    SKIP_WITHOUT(data);
    for (const QString expected : {"BigEndian", "LittleEndian"}) {
        ASSERT_TRUE(readAnalyzeHeader(data + expected + ".hdr", order, header));
        EXPECT_EQ(order, expected);
        EXPECT_EQ(header.dime.dim, (std::array<int16_t, 8>{4, 6, 6, 8, 1, 1, 1, 1}));
    }
}
