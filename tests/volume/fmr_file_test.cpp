// Headers of all versions against texts written by hand.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/fmr_file.h"

#include "base/text_reading.h"
#include "support/scripted_messages.h"

#include <QTemporaryDir>

namespace {

const QString displayLines = "ShowAMRFile: 1\nImageIndex: 0\nLayoutNColumns: 6\nLayoutNRows: 4\n"
                             "LayoutZoomLevel: 1\nSegmentSize: 12\n";
const QString voxelLines = "InplaneResolutionX: 3.5\nInplaneResolutionY: 3.25\n"
                           "SliceThickness: 4\nSliceGap: 0.5\nVoxelResolutionVerified: 1\n";
const QString positionLines =
    "PositionInformationFromImageHeaders\nPosInfosVerified: 1\nCoordinateSystem: 2\n"
    "Slice1CenterX: 1\nSlice1CenterY: 2\nSlice1CenterZ: 3\nSliceNCenterX: 4\nSliceNCenterY: 5\n"
    "SliceNCenterZ: 6\nRowDirX: 7\nRowDirY: 8\nRowDirZ: 9\nColDirX: 10\nColDirY: 11\nColDirZ: 12\n"
    "NRows: 64\nNCols: 48\nFoVRows: 220.5\nFoVCols: 221\nSliceThickness: 3\nGapThickness: 1\n"
    "NrOfPastSpatialTransformations: 0\nRadiologicalConvention: no\n";

QString head(int version, const QString& prefixAndTimes) {
    const QString first = version == 1 ? QString() : QString("FileVersion: %1\n").arg(version);
    return first + "NrOfVolumes: 40\nNrOfSlices: 3\n" + (version < 2 ? "Dropped: 9\n" : "") +
           "NrOfSkippedVolumes: 2\n" + prefixAndTimes;
}

QString sizeLines(const QString& amr) {
    return "ResolutionX: 8\nResolutionY: 6\nLoadAMRFile: " + amr + "\n" + displayLines;
}

QString version2Or3(int version, const QString& protocol) {
    return head(version, "Prefix: old run-\nTR: 2500.5\nInterSliceTime: 90\nVerified: 1\n") +
           sizeLines("a file.amr") + protocol + voxelLines;
}

QString version5(const QString& protocols) {
    return head(5, "Prefix: \"<none>\"\nDataStorageFormat: 2\nTR: 2000\nInterSliceTime: 80\n"
                   "Verified: 0\nTE: 30\nOrder: 1\nVerified: 1\n") +
           sizeLines("\"<none>\"") + protocols + voxelLines + positionLines +
           "FirstDataSourceFile: \"I.001\"\n";
}

FMRHeader parsed(const QString& text, FMRScope scope = FMRScope::Project) {
    FMRHeader header;
    EXPECT_EQ(parseFMR(text, scope, header), FMRParseResult::Ok);
    return header;
}

FMRProject sampleProject() {
    FMRProject project;
    project.NrOfVolumes = 100;
    project.NrOfSlices = 3;
    project.NrOfSkippedVolumes = 2;
    project.Prefix = "run-";
    project.TR = 1999.5f;
    project.InterSliceTime = 83.4f;
    project.TE = 30.0f;
    project.SliceAcquisitionOrder = 4;
    project.ResolutionX = 8;
    project.ResolutionY = 6;
    project.SegmentOffset = 3;
    project.ProtocolFiles = {"a b.prt", "c.prt"};
    project.pixelSizeX = 3.4375f;
    project.pixelSizeY = 0.1f;
    project.sliceThickness = 1.0f / 3.0f;
    project.sliceGap = 1e-7f;
    project.position.positionInfoValid = 1;
    project.position.columnDirection = {0.1f, -1e-5f, 1.0f};
    project.radiologicalConvention = false;
    project.FirstDataSourceFile = "/scanner/in/I.001";
    return project;
}

} // namespace

TEST(FMRFile, VersionOneUsesOldKeys) {
    const FMRHeader first = parsed(head(1, "Prefix: \"\nFileType: LONG\nDelimiter: \"-\"\n") +
                                   sizeLines("<none>") + "ProtocolVersion: 1\nNrOfConditions: 0\n");
    EXPECT_EQ(first.fileVersion, 1);
    EXPECT_EQ(first.NrOfVolumes, 40);
    EXPECT_EQ(first.NrOfSlices, 3);
    EXPECT_EQ(first.NrOfSkippedVolumes, 2);
    EXPECT_EQ(first.TR, 3000.0f);
    EXPECT_EQ(first.InterSliceTime, 100.0f);
    EXPECT_EQ(first.DataStorageFormat, 1);
    EXPECT_EQ(first.ShowAMRFile, 0);
    EXPECT_EQ(first.SegmentSize, 12);
    EXPECT_TRUE(first.ProtocolFiles.isEmpty());
}

TEST(FMRFile, VersionsTwoAndThreeHaveLines) {
    for (const char* protocol :
         {"ProtocolVersion: 1\nword\n", "SegmentOffset: 5\nNrOfConditions: 0\n"}) {
        const FMRHeader second = parsed(version2Or3(2, protocol));
        EXPECT_EQ(second.SegmentOffset, *protocol == 'S' ? 5 : 0);
        EXPECT_EQ(second.pixelSizeX, 3.5f);
        EXPECT_EQ(second.sliceDistance(), 4.5f);
        EXPECT_TRUE(second.VoxelResolutionVerified);
        EXPECT_TRUE(second.ProtocolFiles.isEmpty());
    }
    const QString third =
        version2Or3(3, "ProtocolVersion: 2\nProtocolFile: my runs/a.prt\n") + positionLines;
    const FMRHeader header = parsed(third);
    EXPECT_EQ(header.Prefix, "old run-");
    EXPECT_EQ(header.TR, 2500.5f);
    EXPECT_EQ(header.LoadAMRFile, "a file.amr");
    EXPECT_EQ(header.ShowAMRFile, 1);
    EXPECT_EQ(header.ProtocolFiles, QStringList{"my runs/a.prt"});
    EXPECT_EQ(header.position.coordinateSystem, 2);
    EXPECT_EQ(header.position.columnDirection, (Vector3{10, 11, 12}));
    EXPECT_EQ(header.position.nrOfColumns, 48);
    EXPECT_EQ(header.position.sliceGap, 1.0f);
    EXPECT_FALSE(header.radiologicalConvention);
    EXPECT_EQ(parsed(third, FMRScope::Inspection).position.coordinateSystem, 1);
}

TEST(FMRFile, VersionFiveHasQuotedTextsAndLinkedProtocols) {
    const FMRHeader none = parsed(version5("NrOfLinkedProtocols: 0\n"));
    EXPECT_EQ(none.Prefix, "");
    EXPECT_EQ(none.TE, 30.0f);
    EXPECT_TRUE(none.SliceAcquisitionOrderVerified);
    EXPECT_EQ(none.ShowAMRFile, 0);
    EXPECT_TRUE(none.ProtocolFiles.isEmpty());
    EXPECT_EQ(none.FirstDataSourceFile, "I.001");
    const QString two = "NrOfLinkedProtocols: 2\nProtocolFile: \"a b.prt\"\nProtocolFile: \"c\"\n";
    for (const FMRScope scope : {FMRScope::Project, FMRScope::Inspection}) {
        const FMRHeader header = parsed(version5(two), scope);
        EXPECT_EQ(header.ProtocolFiles, (QStringList{"a b.prt", "c"}));
        EXPECT_EQ(header.pixelSizeY, 3.25f);
        EXPECT_EQ(header.FirstDataSourceFile, "I.001");
    }
}

TEST(FMRFile, RefusesWhatIsNoHeaderOrCutBeforeItsConvention) {
    const QString good = "\n" + version5("NrOfLinkedProtocols: 1\nProtocolFile: \"c\"\n");
    using enum FMRParseResult;
    const struct {
        const char* from;
        const char* to;
        FMRParseResult project;
        FMRParseResult inspection;
    } cases[] = {{"\nFileVersion", "\x89PNG", UnexpectedTokens, UnexpectedTokens},
                 {"FileVersion: 5", "FileVersion: 6", UnsupportedVersion, UnsupportedVersion},
                 {"NrOfSlices:", "Slices:", UnexpectedTokens, Ok},
                 {"ResolutionY:", "Rows:", UnexpectedTokens, Ok},
                 {"PositionInformation", "Position", UnexpectedTokens, Ok},
                 {"NrOfVolumes: 40", "NrOfVolumes: -1", ImpossibleSizes, ImpossibleSizes},
                 {"NrOfSlices: 3", "NrOfSlices: 2000000000", ImpossibleSizes, ImpossibleSizes},
                 {"Protocols: 1", "Protocols: 2147483647", UnexpectedTokens, UnexpectedTokens}};
    for (const auto& c : cases) {
        QString bad = good;
        bad.replace(c.from, c.to);
        FMRHeader header;
        EXPECT_EQ(parseFMR(bad, FMRScope::Project, header), c.project) << c.to;
        EXPECT_EQ(parseFMR(bad, FMRScope::Inspection, header), c.inspection) << c.to;
    }
    for (qsizetype length = 0; length < good.indexOf("no\n"); ++length) {
        FMRHeader header;
        EXPECT_NE(parseFMR(good.left(length), FMRScope::Project, header), FMRParseResult::Ok)
            << length;
    }
}

TEST(FMRFile, WritesWhatItReads) {
    QTemporaryDir folder;
    const QString path = folder.filePath("run.fmr");
    FMRProject project = sampleProject();
    ASSERT_TRUE(writeFMRHeader(project, path, 21));
    EXPECT_EQ(project.Prefix, "run");
    EXPECT_EQ(project.sliceGap, 0.0f);
    QString text;
    ASSERT_TRUE(readTextFile(path, text));
    EXPECT_TRUE(text.startsWith("\nFileVersion:                   5\n"
                                "NrOfVolumes:                   21\n"
                                "NrOfSlices:                    3\n"
                                "NrOfSkippedVolumes:            2\n"
                                "Prefix:                        \"run\"\n"
                                "DataStorageFormat:             2\n"
                                "TR:                            2000\n"
                                "InterSliceTime:                83\n"));
    EXPECT_TRUE(text.contains("InplaneResolutionX:            3.4375\n"
                              "InplaneResolutionY:            0.1\n"));
    EXPECT_TRUE(text.contains("SliceGap:                      0\n"));
    EXPECT_TRUE(text.contains("\n\nPositionInformationFromImageHeaders\n\nPosInfosVerified: 1\n"));
    EXPECT_TRUE(text.endsWith("\n\nNrOfPastSpatialTransformations: 0\n\n"
                              "\n\nRadiologicalConvention: NO\n\n\n"
                              "FirstDataSourceFile: \"I.001\"\n"));
    // Every value is read back: it is written again as it was.
    FMRProject again;
    static_cast<FMRHeader&>(again) = parsed(text);
    EXPECT_EQ(fmrText(again, 21), text);
    EXPECT_EQ(again.sliceThickness, 1.0f / 3.0f);
    project.Prefix = "";
    EXPECT_TRUE(fmrText(project, 500).contains("Prefix:                        \"<none>\"\n"));
    ASSERT_TRUE(writeFMRHeader(project, path, 500));
    FMRHeader capped;
    ASSERT_TRUE(readFMRHeader(path, capped));
    EXPECT_EQ(capped.NrOfVolumes, 100);
}

TEST(FMRFile, FailuresHaveTheirMessages) {
    QTemporaryDir folder;
    ScriptedMessages messages;
    FMRProject project = sampleProject();
    const QString blocked = folder.filePath("file/run.fmr");
    QFile file(folder.filePath("file"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    messages.expect(MessageLevel::Warning,
                    QString("ERROR: Can not open FMR file \"%1\" for writing!").arg(blocked));
    EXPECT_FALSE(writeFMRHeader(project, blocked, 1));
    FMRHeader header;
    header.NrOfSlices = 77;
    messages.expect(MessageLevel::Warning,
                    QString("ERROR - Can not open FMR file: \"%1\" !").arg(blocked));
    EXPECT_FALSE(readFMRHeader(blocked, header));
    messages.expect(MessageLevel::Warning,
                    "ERROR - Can not read FMR file - unexpected tokens encountered!");
    EXPECT_FALSE(readFMRHeader(file.fileName(), header));
    file.write("FileVersion: 9\n");
    file.close();
    messages.expect(MessageLevel::Warning, "ERROR - Unsupported FMR file version\n\nOnly file "
                                           "versions \"1\" - \"5\" supported!");
    EXPECT_FALSE(readFMRHeader(file.fileName(), header));
    EXPECT_EQ(header.NrOfSlices, 77);
}
