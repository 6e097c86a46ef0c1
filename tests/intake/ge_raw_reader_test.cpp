// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/ge_i_names.h"
#include "raw_samples.h"

#include <QDir>

TEST(GeINames, FoldersOf999ImagesInStepsOfTwenty) {
    for (const auto& [series, image, index, name] :
         {std::tuple{1, 1, qint64(998), "001/I.999"},
          {1, 1, 999, "021/I.001"},
          {990, 0, 1000, "1010/I.001"},
          {1, 1500, 999, "041/I.001"},
          {2147483647, 2147483647, 4096000000, "2229485667/I.101"}})
        EXPECT_EQ(geIFileName({series, image}, index), QString(name));
    EXPECT_EQ(geIFileList(QString(1000000, 'w'), {}, 4096000000).nrOfNames, 67) << "is cut";
}

// Two slices of one sample.
TEST(GeIReader, ListsItsFilesWhereItCanAndTakesThoseOfTheExactSize) {
    const QTemporaryDir target;
    IntakeRun run("GE_I", 1, 1, 2);
    run.settings.GESeriesNr = 3;
    run.settings.GEFirstImageNr = 998;
    run.settings.NrOfVolumes = 5;
    run.project.targetFolder = target.path() + '/';
    EXPECT_TRUE(QDir(run.folder.path()).mkdir("003"));
    const QByteArray header(7904, 'h');
    run.write("003/I.998", header + rawSamples({0x0102}));
    run.write("003/I.999", header + "long");
    run.pump.after(900, [&] { run.write("003/I.999", header + rawSamples({0x0304})); });
    const auto reader = run.reader();
    ASSERT_TRUE(reader->prepare());
    const QStringList names =
        QString(contentOf(target.filePath("expected_GE_I_file_list.txt"))).split('\n');
    ASSERT_EQ(names.size(), 11) << "two skipped and three analysed volumes";
    EXPECT_EQ(names[0], run.path("003/I.998"));
    EXPECT_EQ(names[9], run.path("023/I.008"));
    run.project.targetFolder = "/absent/";
    ASSERT_TRUE(reader->prepare() && reader->readFirstVolume());
    EXPECT_EQ(valuesOf(run.project.firstVolume), (std::vector{0x102, 0x304}));
    run.messages.expectWarning("ERROR: GE_I file \"*");
    EXPECT_TRUE(reader->readHeaders()) << "a run goes on without its header";
}

TEST(GeIReader, SlicesSettleTogether) {
    IntakeRun run("GE_I", 1, 1, 40);
    run.settings.NrOfVolumesToSkip = 0;
    run.settings.GESeriesNr = 3;
    run.settings.GEFirstImageNr = 980; // the last slices are in the next folder
    EXPECT_TRUE(QDir(run.folder.path()).mkdir("003") && QDir(run.folder.path()).mkdir("023"));
    for (int slice = 0; slice < 40; ++slice)
        run.write(geIFileName({3, 980}, slice), QByteArray(7904, 'h') + rawSamples({slice + 1}));
    const auto reader = run.reader();
    ASSERT_TRUE(reader->readVolume(0));
    EXPECT_EQ(run.pump.milliseconds(), 10);
    EXPECT_EQ(valuesOf(run.project.volumes[0]), countedFrom(1, 40));
    const qint64 start = run.pump.milliseconds();
    EXPECT_FALSE(reader->readVolume(1));
    EXPECT_GE(run.pump.milliseconds() - start, 1000) << "the first file of a volume is waited for";
}

// Three slices of one sample.
TEST(GeStanfordReader, SwapsInAnyCaseAndSettlesOnceForAFile) {
    for (const ByteOrder order : {ByteOrder::Little, ByteOrder::Big}) {
        IntakeRun run("GE_STANFORD", 1, 1, 3);
        run.settings.pFilePath = run.path("P123.7");
        run.settings.NrOfVolumesToSkip = 9;
        run.state.rawDataByteOrder = order;
        for (const size_t slices : {1, 2, 3})
            run.pump.after(qint64(900 * slices), [&run, slices] {
                run.write("P123.7.V001.img", rawSamples(countedFrom(0x0102, slices)));
            });
        run.write("P123.7.V010.img", rawSamples({0x01FF, 2, 3}));
        const auto reader = run.reader();
        ASSERT_TRUE(reader->prepare() && reader->readFirstVolume());
        EXPECT_EQ(valuesOf(run.project.firstVolume), (std::vector{0x401, 0x301, 0x201}));
        const qint64 start = run.pump.milliseconds();
        ASSERT_TRUE(reader->readVolume(0));
        EXPECT_EQ(run.pump.milliseconds() - start, 10);
        EXPECT_EQ(valuesOf(run.project.volumes[0]), (std::vector{0x300, 0x200, -255}));
        EXPECT_FALSE(reader->readVolume(1));
        run.settings.pFilePath.clear();
        run.messages.expectWarning("ERROR: The name of the P header file \"*");
        EXPECT_FALSE(reader->prepare());
    }
}
