// The files of volumes of interest: the layout, versions, and hostile texts.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "regions/voi_file.h"

#include "support/files.h"
#include "support/scripted_messages.h"
#include "support/test_data.h"

#include <QTemporaryDir>

namespace {

const QString versionFour = corpusText("voi/version4.voi");

VolumeOfInterest twoVolumes() {
    VolumeOfInterest volumes;
    volumes.ReferenceSpace = "TAL";
    volumes.OriginalVMRResolutionY = 2;
    volumes.OriginalVMRResolutionZ = 3;
    volumes.OriginalVMROffsetX = 4;
    volumes.OriginalVMROffsetY = 5;
    volumes.OriginalVMROffsetZ = 6;
    volumes.add("Left\nhand", {255, 0, 12}, {{128, 127, 126}, {0, 0, 0}, {255, -1, 300}});
    volumes.add("Empty", {0, 0, 255}, {});
    return volumes;
}

TEST(VOIFile, IsWrittenInItsLayoutAndReadBack) {
    const QTemporaryDir folder;
    const QString path = folder.filePath("a.voi");
    const VolumeOfInterest volumes = twoVolumes();
    ASSERT_TRUE(writeVOIFile(path, volumes));
    EXPECT_EQ(QString(contentOf(path)), versionFour);

    VolumeOfInterest read;
    ASSERT_TRUE(readVOIFile(path, read));
    EXPECT_EQ(read.NameOfVOI, (std::vector<QString>{"Left hand", "Empty"}));
    EXPECT_EQ(read.VOIVoxels, volumes.VOIVoxels);
    EXPECT_EQ(read.VOICount, (std::vector{3, 0}));
    EXPECT_EQ(read.VOIStart, (std::vector{0, 3}));
    EXPECT_EQ(QString(voiText(read)), versionFour);
}

TEST(VOIFile, OlderVersionsHaveFewerEntries) {
    const QString versionOne = corpusText("voi/version1.voi");
    for (const QString& text : {versionOne, QString(versionOne).remove("FileVersion: 1\r\n"),
                                QString(versionOne).replace("CoordsType", "LeftRightConvention")}) {
        VolumeOfInterest read = twoVolumes();
        ASSERT_EQ(parseVOIs(text, read), VOIParseResult::Ok);
        EXPECT_EQ(read.ReferenceSpace, "");
        EXPECT_EQ(read.LeftRightConvention, text.contains("Left") ? 3 : 1);
        EXPECT_EQ(read.OriginalVMRFramingCubeDim, 256);
        EXPECT_EQ(read.NameOfVOI, std::vector<QString>{"V1"});
        EXPECT_EQ(read.ColorOfVOI[0], (std::array{1, 255, 0}));
        EXPECT_EQ(read.VOIVoxels, (std::vector<VOIVoxel>{{5, 6, 7}}));
    }
}

TEST(VOIFile, SaysWhatIsWrongAndChangesNothing) {
    const QTemporaryDir folder;
    const QString path = folder.filePath("bad.voi");
    const auto changed = [](const char* before, const char* after) {
        EXPECT_TRUE(versionFour.contains(before)) << before;
        return QString(versionFour).replace(before, after);
    };
    const QString version = "ERROR: Unknown VOI file version.";
    const QString damaged =
        "ERROR: Can not read the volumes-of-interest file \"" + path + "\": line %1: %2.";
    const QString lie = "a number of %1, which the file does not hold";
    const std::pair<QString, QString> cases[] = {
        {"", version},
        {"no file of volumes", version},
        {"FileVersion: 5", version},
        {"FileVersion: four", version},
        {"FileVersion: 4", damaged.arg(1).arg("\"NrOfVOIs:\" is missing")},
        {changed("ReferenceSpace:", "ReferenceSpace"),
         damaged.arg(4).arg("\"NrOfVOIs:\" is missing")},
        {changed("VOIs:                   2", "VOIs: 2000000000"),
         damaged.arg(19).arg(lie.arg(2000000000))},
        {changed("VOIs:                   2", "VOIs: -1"), damaged.arg(19).arg(lie.arg(-1))},
        {changed("Voxels: 3", "Voxels: 2147483647"), damaged.arg(24).arg(lie.arg(2147483647))},
        {changed("Voxels: 3", "Voxels: 2"), damaged.arg(27).arg("\"NameOfVOI:\" is missing")},
        {changed("127", "99999999999"), damaged.arg(25).arg("no valid number")}};
    VolumeOfInterest read = twoVolumes();
    for (const auto& [text, message] : cases) {
        writeFile(path, text.toUtf8());
        ScriptedMessages messages;
        messages.expectWarning(message);
        EXPECT_FALSE(readVOIFile(path, read)) << message.toStdString();
    }
    writeFile(path, "FileVersion: 4\nNrOfVOIs: 0\n");
    ScriptedMessages messages;
    messages.expect(MessageLevel::Warning, "Value of \"Number of VOIs\" equals \"0\" - empty file?",
                    "Problem reading file");
    EXPECT_FALSE(readVOIFile(path, read));
    const QString open = "WARNING: Can not open Volume-Of-Interest (.VOI) file: ";
    messages.expectWarning(open + folder.path());
    EXPECT_FALSE(readVOIFile(folder.path(), read));
    messages.expectWarning(open + folder.path());
    EXPECT_FALSE(writeVOIFile(folder.path(), read));
    EXPECT_EQ(QString(voiText(read)), versionFour);
}

} // namespace
