// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/ge_i_names.h"
#include "raw_samples.h"

#include <QDir>

namespace {

TEST(GeINames, FoldersOf999ImagesInStepsOfTwenty) {
    struct Case {
        int series, image;
        qint64 index;
        const char* name;
    };
    for (const auto& [series, image, index, name] :
         {Case{1, 1, 0, "001/I.001"},
          {1, 1, 998, "001/I.999"},
          {1, 1, 999, "021/I.001"},
          {1, 1, 1998, "041/I.001"},
          {7, 990, 10, "027/I.001"},
          {990, 0, 1000, "1010/I.001"},
          {1, 1500, 999, "041/I.001"},
          {2147483647, 2147483647, 4096000000, "2229485667/I.101"}})
        EXPECT_EQ(geIFileName({series, image}, index), QString(name));
}

// Two slices of one sample.
struct GeIRun : IntakeRun {
    GeIRun() : IntakeRun("GE_I", 1, 1, 2) {
        settings.GESeriesNr = 3;
        settings.GEFirstImageNr = 998;
        settings.NrOfVolumes = 5;
        project.targetFolder = target.path() + '/';
        for (const char* name : {"003", "023"})
            EXPECT_TRUE(QDir(folder.path()).mkdir(name));
    }
    void writeSlice(const QString& name, int sample) {
        write(name, QByteArray(7904, 'h') + rawSamples({sample}));
    }
    const QTemporaryDir target;
    const QString listName = target.filePath("expected_GE_I_file_list.txt");
};

TEST(GeINames, AHugeListIsCut) {
    EXPECT_EQ(geIFileList(QString(1000000, 'w'), {}, 4096000000).nrOfNames, 67);
}

TEST(GeIReader, ListsItsFilesWhereItCanAndTakesThoseOfTheExactSize) {
    GeIRun run;
    run.writeSlice("003/I.998", 0x0102);
    run.write("003/I.999", QByteArray(7904 + 4, 'h'));
    run.pump.after(900, [&] { run.writeSlice("003/I.999", 0x0304); });
    const auto reader = run.reader();
    ASSERT_TRUE(reader->prepare());
    QFile list(run.listName);
    ASSERT_TRUE(list.open(QIODevice::ReadOnly));
    const QStringList names = QString(list.readAll()).split('\n');
    ASSERT_EQ(names.size(), 11) << "two skipped and three analysed volumes";
    EXPECT_EQ(names[0], run.path("003/I.998"));
    EXPECT_EQ(names[2], run.path("023/I.001"));
    EXPECT_EQ(names[9], run.path("023/I.008"));
    run.project.targetFolder = "/absent/";
    ASSERT_TRUE(reader->prepare() && reader->readFirstVolume());
    EXPECT_EQ(valuesOf(run.project.firstVolume), (std::vector{0x102, 0x304}));
    run.messages.expect(MessageLevel::Warning, "ERROR: GE_I file \"*");
    EXPECT_TRUE(reader->readHeaders()) << "a run goes on without its header";
}

// Three slices of one sample.
struct StanfordRun : IntakeRun {
    StanfordRun() : IntakeRun("GE_STANFORD", 1, 1, 3) {
        settings.PFileHeader = folder.filePath("E7P123.7");
        settings.pFilePath = folder.filePath("P123.7");
        settings.NrOfVolumesToSkip = 9;
    }
};

TEST(GeStanfordReader, SwapsInAnyCaseAndSettlesOnceForAFile) {
    for (const ByteOrder order : {ByteOrder::Little, ByteOrder::Big}) {
        StanfordRun run;
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
    }
}

TEST(GeStanfordReader, HeaderStandsInTheWatchFolderUnlessItsNameTells) {
    QTemporaryDir other;
    StanfordRun run;
    run.write("E7P123.7", "FOV = 220");
    writeFile(other.filePath("P9"), "FOV = 230");
    for (const auto& [name, fieldOfView] :
         {std::pair{QString("E7P123.7"), 220.0f}, {other.filePath("P9"), 230.0f}}) {
        run.settings.PFileHeader = name;
        EXPECT_TRUE(run.reader()->readHeaders());
        EXPECT_EQ(run.project.position.fovRows, fieldOfView);
    }
    run.settings.pFilePath.clear();
    run.messages.expect(MessageLevel::Warning, "ERROR: The name of the P header file \"*");
    EXPECT_FALSE(run.reader()->prepare());
}

} // namespace
