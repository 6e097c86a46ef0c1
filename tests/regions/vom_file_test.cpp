// SPDX-License-Identifier: GPL-3.0-or-later
#include "regions/vom_file.h"

#include "support/files.h"
#include "support/scripted_messages.h"
#include "support/test_data.h"

#include <QTemporaryDir>

TEST(VomFile, HasItsBoundingBoxItsMapsAndAValuePerVoxel) {
    VomHeader header;
    header.originalVMRFile = "brain.vmr";
    VoxelMap first{"SVM Weights", {255, 0, 12}, {{3, 10}, {4, 2}, {5, 7}}, {-0.25f, 0.1f}};
    VoxelMap second{"B", {}, {{5}, {1}, {-6}}, {1e-8f}};
    const QByteArray expected = R"(
FileVersion:                2

BoundingBox:                3 10 1 4 -6 7
ResolutionRelativeToVMR:    1
LeftRightConvention:        1
OriginalVMRFile:            "brain.vmr"
IncludeNVMPValues:          1
FromVMPFile:                ""
VMPIndex:                   1
MapType:                    0

NrOfVOMs:                   2

NameOfVOM:  SVM Weights
ColorOfVOM: 255 0 12

NrOfVoxels: 2
3 4 5 -0.25
10 2 7 0.100000001

NameOfVOM:  B
ColorOfVOM: 255 0 0

NrOfVoxels: 1
5 1 -6 9.99999994e-09

)";
    second.color = {255, 0, 0};
    const QTemporaryDir folder;
    ASSERT_TRUE(writeVomFile(folder.filePath("a.vom"), header, {first, second}));
    EXPECT_EQ(contentOf(folder.filePath("a.vom")), expected);
    EXPECT_TRUE(vomFileText({}, {}).contains("BoundingBox:                0 0 0 0 0 0\n"));
}

TEST(VomFile, AFailureIsTold) {
    ScriptedMessages messages;
    messages.expectWarning("Can not open VOI-VMP (VOM) file: /no/such/folder/a.vom");
    EXPECT_FALSE(writeVomFile("/no/such/folder/a.vom", {}, {}));
}

TEST(VomFile, ReadsBothFormsAndWritesThemBack) {
    const QString values = corpusText("vom/values.vom");
    VomHeader header;
    std::vector<VoxelMap> maps;
    QString fault;
    ASSERT_TRUE(parseVom(values, header, maps, fault)) << fault.toStdString();
    EXPECT_EQ(header, (VomHeader{3, 1, "brain.vmr", {{"a map.vmp", 1, 1}, {"", 3, 0}}}));
    ASSERT_EQ(maps.size(), 2u);
    EXPECT_EQ(maps[0], (VoxelMap{"Left hand",
                                 {255, 0, 12},
                                 {{3, 10}, {4, 2}, {5, 7}},
                                 {-0.25f, 7.0f, 0.1f, 16777216.0f}}));
    EXPECT_EQ(QString(vomFileText(header, maps)), values);

    const QString voxels = corpusText("vom/voxels.vom");
    ASSERT_TRUE(parseVom(voxels, header, maps, fault)) << fault.toStdString();
    EXPECT_EQ(header, (VomHeader{1, 0, "", {}}));
    EXPECT_EQ(maps, (std::vector<VoxelMap>{{"", {255, 0, 0}, {{3}, {4}, {5}}, {}}}));
    EXPECT_EQ(QString(vomFileText(header, maps)), voxels);
}

TEST(VomFile, DamagedTextIsRefusedAndChangesNothing) {
    const QString values = corpusText("vom/values.vom");
    const QString lie = "a number of 2000000000, which the file does not hold";
    const std::tuple<const char*, const char*, QString> cases[] = {
        {"FileVersion:                2", "FileVersion: 3", "line 2: unknown version"},
        {"3 10 1", "3 1", "line 5: no valid number"},
        {"\"brain.vmr\"", "brain.vmr", "line 8: no text in double quotes"},
        {"IncludeNVMPValues:          2", "IncludeNVMPValues: 2000000000", "line 8: " + lie},
        {"IncludeNVMPValues:          2", "IncludeVMPValues: 1",
         "line 8: values of maps that are not listed"},
        {"VOMs:                   2", "VOMs: 2000000000", "line 16: " + lie},
        {"Voxels: 2", "Voxels: 2000000000", "line 21: " + lie},
        {"-0.25 7", "-0.25", "line 25: no valid number"},
        {"16777216", "1e+39", "line 23: a number out of range"},
        {"16777216", "nan", "line 23: no valid number"}};
    for (const auto& [before, after, expected] : cases) {
        ASSERT_TRUE(values.contains(before)) << before;
        VomHeader header;
        std::vector<VoxelMap> maps(1);
        QString fault;
        EXPECT_FALSE(parseVom(QString(values).replace(before, after), header, maps, fault));
        EXPECT_EQ(fault.toStdString(), expected.toStdString());
        EXPECT_EQ(header, VomHeader());
        EXPECT_EQ(maps, std::vector<VoxelMap>(1));
    }
    VomHeader header;
    std::vector<VoxelMap> maps;
    ScriptedMessages messages;
    messages.expectWarning("Can not open VOI-VMP (VOM) file: /no.vom");
    EXPECT_FALSE(readVomFile("/no.vom", header, maps));
}
