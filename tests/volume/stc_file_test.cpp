// Data files that are missing, short, huge or of an old layout.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/stc_file.h"

#include "support/scripted_messages.h"
#include "volume/fmr_file.h"
#include "volume/load_fmr_project.h"
#include "volume_runs.h"

#include <QFile>
#include <QTemporaryDir>

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

QByteArray contentOf(const QString& path) {
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    return file.readAll();
}

void writeBytes(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_EQ(file.write(bytes), bytes.size());
}

class STCFile : public testing::Test {
protected:
    QTemporaryDir folder;
    ScriptedMessages messages;
    RecordedProgramEnd end;
    FMRProject project = makeRun(folder.path());
};

} // namespace

TEST_F(STCFile, MissingAndShortFilesEndTheProgram) {
    const QString path = folder.filePath("run.stc");
    ASSERT_TRUE(writeFMRHeader(project, project.projectPath, 5));
    messages.expect(MessageLevel::Critical, "ERROR: Can not open .stc file: " + path);
    EXPECT_FALSE(readSTCData(project));
    FMRHeader header;
    Volume volume;
    messages.expect(MessageLevel::Critical,
                    QString("ERROR: Can not find / open stc file: %1 !").arg(path));
    EXPECT_FALSE(readSTCVolume(0, project.projectPath, header, volume));
    const QString shortText =
        "ERROR: The .stc file holds fewer samples than its header states: " + path;
    writeBytes(path, QByteArray(3 * 5 * 16 - 1, '\0'));
    for (int i = 0; i < 2; ++i)
        messages.expect(MessageLevel::Critical, shortText);
    EXPECT_FALSE(readSTCData(project));
    EXPECT_FALSE(readSTCVolume(0, project.projectPath, header, volume));
    writeBytes(path, QByteArray(3 * 5 * 16, '\0'));
    messages.expect(MessageLevel::Critical, shortText);
    EXPECT_FALSE(readSTCVolume(5, project.projectPath, header, volume));
    EXPECT_EQ(end.statuses, std::vector<int>(5, 1));
}

TEST_F(STCFile, HugeSizesAreRefusedBeforeMemoryIsTaken) {
    project.NrOfSlices = maximumFMRSize;
    project.ResolutionX = project.ResolutionY = maximumFMRSize;
    project.NrOfVolumes = maximumFMRVolumes;
    ASSERT_TRUE(writeFMRHeader(project, project.projectPath, maximumFMRVolumes));
    writeBytes(folder.filePath("run.stc"), QByteArray(100, 'x'));
    FMRProject loaded;
    messages.expect(MessageLevel::Critical, "ERROR: The .stc file holds fewer samples*");
    EXPECT_FALSE(loadFMRProject(loaded, project.projectPath, LoadData::Yes));
    messages.expect(MessageLevel::Critical,
                    "ERROR: Insufficient memory for loading the functional project!");
    EXPECT_FALSE(loadFMRProject(loaded, project.projectPath, LoadData::No));
}

TEST_F(STCFile, SliceFilesOfOldRunsAreRead) {
    project = makeRun(folder.path(), 2);
    const FMRProject original = makeRun(folder.path(), 2);
    project.DataStorageFormat = 1;
    project.Prefix = "run";
    ASSERT_TRUE(writeSTCData(original, 2, nullptr, nullptr, 0, 0));
    const QByteArray all = contentOf(folder.filePath("run.stc"));
    for (int slice = 0; slice < 3; ++slice)
        writeBytes(folder.filePath(QString("run-%1.stc").arg(slice + 1)),
                   QByteArray("\x04\0\x02\0", 4) + all.mid(slice * 32, 32));
    ASSERT_TRUE(project.allocateVolumes());
    ASSERT_TRUE(readSTCData(project));
    EXPECT_EQ(samplesOf(project), samplesOf(original));

    messages.expect(MessageLevel::Critical,
                    "ERROR: Unexpected .stc file dimensions, quitting Cortivo NX...");
    writeBytes(folder.filePath("other.stc"), QByteArray("\x02\0\x04\0", 4) + QByteArray(32, '\0'));
    EXPECT_FALSE(readSliceSTC(project, 0, folder.filePath("other.stc")));
    messages.expect(MessageLevel::Critical, "ERROR: The .stc file holds fewer samples*");
    writeBytes(folder.filePath("short.stc"), QByteArray("\x04\0\x02\0", 4) + QByteArray(31, '\0'));
    EXPECT_FALSE(readSliceSTC(project, 0, folder.filePath("short.stc")));
    EXPECT_EQ(end.statuses, (std::vector<int>{1, 1}));
}

TEST_F(STCFile, AnAnatomicalFileIsFoundBesideTheProjectOrCleared) {
    project.LoadAMRFile = "C:\\old\\place\\head.amr";
    project.ShowAMRFile = 1;
    ASSERT_TRUE(writeFMRHeader(project, project.projectPath, 5));
    messages.expect(MessageLevel::Warning,
                    "Error loading .FMR project:\n -> Can not find referenced file  > "
                    "C:\\old\\place\\head.amr <");
    FMRProject loaded;
    ASSERT_TRUE(loadFMRProject(loaded, project.projectPath, LoadData::No));
    EXPECT_EQ(loaded.LoadAMRFile, "");
    writeBytes(folder.filePath("head.amr"), "x");
    ASSERT_TRUE(loadFMRProject(loaded, project.projectPath, LoadData::No));
    EXPECT_EQ(loaded.LoadAMRFile, folder.filePath("head.amr"));
    EXPECT_EQ(loaded.ShowAMRFile, 1);
}

TEST(RunVolumes, TableHasTheAddressOfEachVolume) {
    RunVolumes volumes;
    ASSERT_TRUE(volumes.allocate(3, 5));
    volumes[2][4] = -7;
    const RunVolumes moved = std::move(volumes);
    EXPECT_EQ(moved.table()[2][4], -7);
    for (size_t v = 0; v < 3; ++v)
        EXPECT_EQ(moved.table()[v], moved[v].data());
    EXPECT_FALSE(volumes.allocate(SIZE_MAX / 4, 8));
    EXPECT_TRUE(volumes.empty());
    EXPECT_EQ(volumes.samplesOfEach(), 0u);
}
