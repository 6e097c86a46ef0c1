// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/similar_files.h"

#include "intake_run.h"

#include <QDir>

namespace {

QStringList linesFor(const QStringList& awaited, const QStringList& files) {
    SimilarNames similar(awaited);
    for (const QString& file : files)
        similar.addFile(file);
    return similar.lines();
}

TEST(SimilarNames, AreToldWithWhatIsOther) {
    struct Case {
        QStringList awaited, files, lines;
    };
    const Case cases[] = {
        {{"run-0001.dcm"}, {"RUN-0001.dcm"}, {R"(Other case: "RUN-0001.dcm")"}},
        {{"run-0001.dcm"}, {"run-0001.IMA"}, {R"(Other extension: "run-0001.IMA")"}},
        {{"run-0001"}, {"run-0001.dcm"}, {R"(Other extension: "run-0001.dcm")"}},
        {{"run-0001.dcm"},
         {"Run-0001.dcm.GZ", "run-0001.dcm.7z"},
         {R"(Compressed: 2 names from "Run-0001.dcm.GZ" to "run-0001.dcm.7z")"}},
        {{"run-0001.dcm"}, {".run-0001.dcm.Xa1"}, {R"(Longer name: ".run-0001.dcm.Xa1")"}},
        {{"I.01"}, {"MRI.01"}, {R"(Longer name: "MRI.01")"}},
        {{"run-0001.dcm"}, {"run-1.dcm"}, {R"(Other number of digits: "run-1.dcm")"}},
        {{"run-0003.dcm"},
         {"run-0010.dcm", "run-9.dcm", "run-0011.dcm"},
         {R"(Other number: 3 names from "run-9.dcm" to "run-0011.dcm")"}},
        {{"scan-0007.dcm"}, {"run_7.dcm", "ep2d_0007.dcm"}, {R"(Other prefix: "ep2d_0007.dcm")"}},
        {{"run.dcm"}, {"test.dcm"}, {R"(Only other files: "test.dcm")"}},
        {{"run-1.dcm"}, {"run-1.dcm", "test.txt"}, {}},
        // Files of the same series first, then the same image of another series, then all others.
        {{"1_5_46.dcm"},
         {"1_4_46.dcm", "1_4_45.dcm", "1_5_45.dcm", "1_5_44.dcm"},
         {R"(Other number: 2 names from "1_5_44.dcm" to "1_5_45.dcm")",
          R"(Other number: "1_4_46.dcm")", R"(Other number: "1_4_45.dcm")"}},
    };
    for (const Case& one : cases)
        EXPECT_EQ(linesFor(one.awaited, one.files), one.lines) << one.awaited[0].toStdString();
}

class SimilarFiles : public testing::Test {
protected:
    void put(const QString& name, int bytes) {
        writeFile(folder.filePath(name), QByteArray(bytes, 'x'));
    }
    [[nodiscard]] QStringList look(bool atLeast = true) const {
        return similarFiles({{folder.filePath("run-0001.dcm")}, 2000, atLeast}, pump);
    }
    QTemporaryDir folder;
    SimulatedPump pump;
};

TEST_F(SimilarFiles, TellWhyTheFileItselfIsNotTaken) {
    const auto line = [](const char* text) { return QStringList{text}; };
    EXPECT_EQ(look(), line("The folder is empty"));
    put("run-0001.dcm", 1999);
    put("test.txt", 10);
    EXPECT_EQ(look(), line(R"(Too small, 1,999 of at least 2,000 bytes: "run-0001.dcm")"));
    put("run-0001.dcm", 2000);
    EXPECT_EQ(look(false), look());
    put("run-0001.dcm", 2001);
    EXPECT_EQ(look(), line(R"(It is still changing, or not complete: "run-0001.dcm")"));
    EXPECT_EQ(look(false), line(R"(Too large, 2,001 of exactly 2,000 bytes: "run-0001.dcm")"));
    QFile::remove(folder.filePath("run-0001.dcm"));
    QFile::remove(folder.filePath("test.txt"));
    ASSERT_TRUE(QDir(folder.path()).mkdir("run-0001.dcm"));
    EXPECT_EQ(look(), line(R"(Not a file: "run-0001.dcm")"));
}

TEST_F(SimilarFiles, AreLookedForInAllFolders) {
    put("run-0002.dcm", 10);
    const QString here = folder.path() + '/';
    EXPECT_EQ(similarFiles({{"/none/run-0001.dcm", here + "run-0001.dcm"}, 10, true}, pump),
              (QStringList{"/none/: The folder does not exist",
                           here + R"(: Other number: "run-0002.dcm")"}));
}

TEST_F(SimilarFiles, FillFiveLinesAtMost) {
    for (const char* name : {"run-0001.dcm", "Run-0001.dcm", "run-0001.gz", "run-0001.dcm.gz",
                             "run-1.dcm", "run-2.dcm", "a-0001.dcm"})
        put(name, 10);
    const QStringList lines = look();
    ASSERT_EQ(lines.size(), 5);
    EXPECT_EQ(lines.last(), "And more");
    for (const char* name : {"run-2.dcm", "a-0001.dcm"})
        ASSERT_TRUE(QFile::remove(folder.filePath(name)));
    EXPECT_EQ(look().filter("And more"), QStringList());
}

/// Its clock moves at each look at it.
class TickingPump : public SimulatedPump {
public:
    [[nodiscard]] qint64 milliseconds() const override { return ++now; }
    mutable qint64 now = 0;
};

TEST_F(SimilarFiles, EndALookThatTakesLong) {
    for (int i = 2; i < 200; ++i)
        put(QString("run-%1.dcm").arg(i), 1);
    const TickingPump ticking;
    const QStringList lines = similarFiles({{folder.filePath("run-1.dcm")}, 1, true}, ticking);
    ASSERT_EQ(lines.size(), 2);
    EXPECT_TRUE(lines[0].startsWith("Other number: ")) << lines[0].toStdString();
    EXPECT_TRUE(lines[1].startsWith("There is more: only ")) << lines[1].toStdString();
    EXPECT_LE(ticking.now, 60);
}

// The file comes in halves, at 300 and 600 milliseconds. The wait ends with the second one,
// whichever of the two is waited for.
TEST(FileWaits, AreToldAsLongAsTheyLast) {
    const QByteArray image = DicomBytes().meta().pixels({7, 8, 9, 10}).bytes;
    for (const auto& [type, name, bytes] : {std::tuple{"DICOM", "run-0001-0001.dcm", image},
                                            {"PHILIPS_REC", "run.rec", QByteArray(8, 'x')}}) {
        IntakeRun run(type, 2, 2, 1);
        run.settings.DicomFirstVolumeNr = 1;
        run.settings.documentFirstFileName = run.path(name);
        std::vector<bool> told;
        std::optional<FileWait> latest;
        run.pump.after(300, [&, &name = name, &bytes = bytes] {
            run.write(name, bytes.left(bytes.size() - 4));
        });
        run.pump.after(600, [&, &name = name, &bytes = bytes] { run.write(name, bytes); });
        for (const int time : {150, 550})
            run.pump.after(time, [&] {
                told.push_back(run.state.fileWait.has_value());
                latest = run.state.fileWait;
            });
        ASSERT_TRUE(run.reader()->readFirstVolume()) << type;
        ASSERT_EQ(told, (std::vector<bool>{true, true})) << type;
        EXPECT_FALSE(run.state.fileWait);
        EXPECT_TRUE(latest->file.names.contains(run.path(name)));
        EXPECT_EQ(latest->start, 0);
        EXPECT_EQ(latest->timeOutMilliseconds, 1000);
    }
}

} // namespace
