// SPDX-License-Identifier: GPL-3.0-or-later
#include "regions/vom_file.h"

#include "support/files.h"
#include "support/scripted_messages.h"

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
