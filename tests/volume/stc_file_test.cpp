// Data files that are missing, short, huge or of an old layout.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/stc_file.h"

#include "support/files.h"
#include "support/scripted_messages.h"
#include "volume/first_volume_file.h"
#include "volume/fmr_file.h"
#include "volume_runs.h"

#include <QDir>
#include <QTemporaryDir>
#include <sys/stat.h>

namespace {

int16_t valueAt(int x, int y, int slice, int volume) {
    return int16_t(x + 10 * y + 100 * slice + 1000 * volume - 3000);
}

FMRProject makeRun(const QString& folder, int nrOfVolumes = 5) {
    FMRProject project = runOf(4, 2, 3, nrOfVolumes, valueAt);
    project.Prefix = "run-";
    project.targetFolder = folder + "/";
    project.projectPath = project.targetFolder + "run.fmr";
    return project;
}

class STCFile : public testing::Test {
protected:
    QTemporaryDir folder;
    ScriptedMessages messages;
    RecordedProgramEnd end;
    FMRProject project = makeRun(folder.path());
    Volume volume;

    bool readVolume(int index) {
        FMRHeader header;
        return readSTCVolume(index, project.projectPath, header, volume);
    }
};

} // namespace

// Data are named like the header's prefix without a folder; other writers drop one "-" of it.
TEST_F(STCFile, EverySavedRunComesBackWhateverItsPrefix) {
    const QStringList prefixes{
        "",     "-",      "--",      "a-",     "a--",     "a---",       "-a",      "a\"b-",
        "\"-",  "<none>", "<none>-", "a b - ", "%1%2-",   "a\nb\t-",    "\u00e4-", "...-",
        ";x--", "..",     "a/b--",   "../up-", "/tmp/a-", "..\\back\\", "a/..",    "a\"/<none>"};
    for (const QString& prefix : prefixes) {
        SCOPED_TRACE(prefix.toStdString());
        const QTemporaryDir around;
        ASSERT_TRUE(QDir(around.path()).mkdir("run"));
        project = makeRun(around.filePath("run"));
        project.Prefix = prefix;
        ASSERT_TRUE(writeSTCData(project, 5, nullptr, nullptr, 0, 0));
        if (prefix.contains('/') || prefix.contains('\\'))
            messages.expectWarning("WARNING: The prefix \"*");
        ASSERT_TRUE(writeFMRHeader(project, project.projectPath, 5));
        constexpr auto everything = QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot;
        EXPECT_EQ(QDir(around.path()).entryList(everything), QStringList{"run"});
        EXPECT_EQ(QDir(around.filePath("run")).entryList(everything).size(), 2);
        FMRProject loaded;
        ASSERT_TRUE(loadFMRProject(loaded, project.projectPath, LoadData::Yes));
        EXPECT_EQ(samplesOf(loaded), samplesOf(project));
        EXPECT_TRUE(readVolume(4));
        EXPECT_TRUE(std::ranges::equal(volume.span(), project.volumes[4]));
    }
}

// Data of other writers lack one dash of the header's prefix; a folder in it is ignored.
TEST_F(STCFile, DataOfOtherWritersAreFoundBesideTheHeader) {
    const std::tuple<const char*, const char*, bool> cases[] = {
        {"run-", "run", false},        {"run--", "run-", false},   {"run---", "run--", false},
        {"../run", "run", true},       {"/etc/run", "run", true},  {"..\\run", "run", true},
        {"a/../../run-", "run", true}, {"C:\\x\\run", "run", true}};
    for (const auto& [stated, file, hasFolder] : cases) {
        SCOPED_TRACE(stated);
        ASSERT_TRUE(writeFMRHeader(project, project.projectPath, 5));
        ASSERT_TRUE(writeSTCData(project, 5, nullptr, nullptr, 0, 0));
        const QString data = folder.filePath(QString(file) + ".stc");
        ASSERT_TRUE(data == stcFileName(project) || QFile::rename(stcFileName(project), data));
        writeFile(
            project.projectPath,
            contentOf(project.projectPath).replace("\"run\"", '"' + QByteArray(stated) + '"'));
        for (int i = 0; hasFolder && i < 2; ++i)
            messages.expectWarning(QString("WARNING: The prefix \"%1\" in*").arg(stated));
        FMRProject loaded;
        ASSERT_TRUE(loadFMRProject(loaded, project.projectPath, LoadData::Yes));
        EXPECT_TRUE(readVolume(0));
        EXPECT_TRUE(loaded.Prefix == "run" || !hasFolder);
        QFile::remove(data);
    }
}

// A pipe would block the program for good.
TEST_F(STCFile, PipesFoldersAndDevicesAreRefused) {
    ASSERT_TRUE(writeFMRHeader(project, project.projectPath, 5));
    const QString path = folder.filePath("run.stc");
    const QString slices = folder.filePath("run1.stc");
    const QString first = folder.filePath("run-firstvol.img");
    const std::vector<std::function<bool(const QString&)>> makers{
        [](const QString& name) { return mkfifo(name.toLocal8Bit().constData(), 0600) == 0; },
        [](const QString& name) { return QDir().mkdir(name); },
        [](const QString& name) { return QFile::link("/dev/zero", name); }};
    for (const auto& make : makers) {
        ASSERT_TRUE(make(path) && make(slices) && make(first));
        FMRProject loaded;
        messages.expectCritical("ERROR: Can not open .stc file: " + path);
        EXPECT_FALSE(loadFMRProject(loaded, project.projectPath, LoadData::Yes));
        messages.expectCritical("ERROR: Can not find / open stc file: *");
        EXPECT_FALSE(readVolume(0));
        messages.expectCritical("ERROR: Can not open .stc file: " + slices);
        EXPECT_FALSE(readSliceSTC(project, 0, slices));
        messages.expectCritical("ERROR: Can not find / open file: " + first + " !");
        EXPECT_FALSE(readFirstVolume(project));
        messages.expectWarning("ERROR: Can not write FMR time course (STC) files !");
        EXPECT_FALSE(writeSTCData(project, 5, nullptr, nullptr, 0, 0));
        for (const QString& name : {path, slices, first})
            EXPECT_TRUE(QFileInfo(name).isDir() ? QDir().rmdir(name) : QFile::remove(name));
    }
}

TEST_F(STCFile, MissingAndShortFilesEndTheProgram) {
    const QString path = folder.filePath("run.stc");
    ASSERT_TRUE(writeFMRHeader(project, project.projectPath, 5));
    messages.expectCritical(QString("ERROR: Can not find / open stc file: %1 !").arg(path));
    EXPECT_FALSE(readVolume(0));
    const QString shortText =
        "ERROR: The .stc file holds fewer samples than its header states: " + path;
    writeFile(path, QByteArray(3 * 5 * 16 - 1, '\0'));
    for (int i = 0; i < 2; ++i)
        messages.expectCritical(shortText);
    EXPECT_FALSE(readSTCData(project));
    EXPECT_FALSE(readVolume(0));
    writeFile(path, QByteArray(3 * 5 * 16, '\0'));
    messages.expectCritical(shortText);
    EXPECT_FALSE(readVolume(5));
    EXPECT_EQ(end.statuses, std::vector<int>(4, 1));
}

TEST_F(STCFile, HugeSizesAreRefusedBeforeMemoryIsTaken) {
    project.NrOfSlices = maximumFMRSize;
    project.ResolutionX = project.ResolutionY = maximumFMRSize;
    project.NrOfVolumes = maximumFMRVolumes;
    ASSERT_TRUE(writeFMRHeader(project, project.projectPath, maximumFMRVolumes));
    writeFile(folder.filePath("run.stc"), QByteArray(100, 'x'));
    FMRProject loaded;
    messages.expectCritical("ERROR: The .stc file holds fewer samples*");
    EXPECT_FALSE(loadFMRProject(loaded, project.projectPath, LoadData::Yes));
    messages.expectCritical("ERROR: Insufficient memory for loading the functional project!");
    EXPECT_FALSE(loadFMRProject(loaded, project.projectPath, LoadData::No));
}

// A sparse file of 5.5 GB, more than 2^31 samples.
TEST_F(STCFile, VolumesFarBehindInALargeFileAreFound) {
    project = FMRProject();
    project.NrOfVolumes = 400;
    project.ResolutionX = project.ResolutionY = 240;
    project.NrOfSlices = 120;
    project.targetFolder = folder.path() + "/";
    project.projectPath = folder.filePath("run.fmr");
    ASSERT_TRUE(writeFMRHeader(project, project.projectPath, 400));
    QFile data(stcFileName(project));
    ASSERT_TRUE(data.open(QIODevice::WriteOnly) && data.resize(qint64(400) * 120 * 240 * 240 * 2));
    // Sample (239, 239) of the last slice and volume, and of slice 110 of volume 7.
    ASSERT_TRUE(data.seek(5529600000 - 2) && data.write("\x39\x30") == 2);
    ASSERT_TRUE(data.seek(((qint64(110) * 400 + 7) * 57600 + 57599) * 2) &&
                data.write("\x31\x04") == 2);
    data.close();
    ASSERT_TRUE(readVolume(399));
    EXPECT_EQ(volume[6911999], 12345);
    ASSERT_TRUE(readVolume(7));
    EXPECT_EQ(volume[size_t(110) * 57600 + 57599], 1073);
    EXPECT_EQ(volume[6911999], 0);
}

TEST_F(STCFile, SliceFilesOfOldRunsAreRead) {
    project = makeRun(folder.path(), 2);
    const FMRProject original = makeRun(folder.path(), 2);
    project.DataStorageFormat = 1;
    project.Prefix = "run";
    ASSERT_TRUE(writeSTCData(original, 2, nullptr, nullptr, 0, 0));
    const QByteArray all = contentOf(folder.filePath("run.stc"));
    for (int slice = 0; slice < 3; ++slice)
        writeFile(folder.filePath(QString("run-%1.stc").arg(slice + 1)),
                  QByteArray("\x04\0\x02\0", 4) + all.mid(slice * 32, 32));
    ASSERT_TRUE(project.allocateVolumes());
    ASSERT_TRUE(readSTCData(project));
    EXPECT_EQ(samplesOf(project), samplesOf(original));

    messages.expectCritical("ERROR: Unexpected .stc file dimensions, quitting Cortivo NX...");
    writeFile(folder.filePath("other.stc"), QByteArray("\x04\0\x04\0", 4) + QByteArray(32, '\0'));
    EXPECT_FALSE(readSliceSTC(project, 0, folder.filePath("other.stc")));
    EXPECT_EQ(end.statuses, std::vector<int>{1});
}

TEST_F(STCFile, AnAnatomicalFileIsFoundBesideTheProjectOrCleared) {
    project.LoadAMRFile = "C:\\old\\place\\head.amr";
    project.ShowAMRFile = 1;
    ASSERT_TRUE(writeFMRHeader(project, project.projectPath, 5));
    messages.expectWarning("Error loading .FMR project:\n -> Can not find referenced file  > "
                           "C:\\old\\place\\head.amr <");
    FMRProject loaded;
    ASSERT_TRUE(loadFMRProject(loaded, project.projectPath, LoadData::No));
    EXPECT_EQ(loaded.LoadAMRFile, "");
    writeFile(folder.filePath("head.amr"), "x");
    ASSERT_TRUE(loadFMRProject(loaded, project.projectPath, LoadData::No));
    EXPECT_EQ(loaded.LoadAMRFile, folder.filePath("head.amr"));
    EXPECT_EQ(loaded.ShowAMRFile, 1);
}
