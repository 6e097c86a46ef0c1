// Headers of all versions against texts written by hand.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/fmr_file.h"

#include "support/files.h"
#include "support/scripted_messages.h"
#include "support/test_data.h"

#include <QTemporaryDir>

namespace {

/// One of the headers that the parser's fuzz target starts from.
QString sampleHeader(const char* version) {
    return corpusText(QString("fmr/version%1.fmr").arg(version));
}

FMRHeader parsed(const QString& text, FMRScope scope = FMRScope::Project) {
    FMRHeader header;
    EXPECT_EQ(parseFMR(text, scope, header), FMRParseResult::Ok);
    return header;
}

FMRProject sampleProject() {
    FMRProject project;
    static_cast<FMRHeader&>(project) = parsed(sampleHeader("5"));
    project.NrOfVolumes = 100;
    project.Prefix = "run-";
    project.TR = 1999.5f;
    project.pixelSizeX = 3.4375f;
    project.pixelSizeY = 0.1f;
    project.sliceThickness = 1.0f / 3.0f;
    project.sliceGap = 1e-7f;
    project.FirstDataSourceFile = "/scanner/in/I.001";
    return project;
}

} // namespace

TEST(FMRFile, EachVersionHasKeysOfItsOwn) {
    const FMRHeader first = parsed(sampleHeader("1"));
    EXPECT_EQ(first.TR, 3000.0f);
    EXPECT_EQ(first.DataStorageFormat, 1);
    const FMRHeader second = parsed(sampleHeader("2"));
    EXPECT_EQ(second.SegmentOffset, 5);
    EXPECT_EQ(second.sliceDistance(), 4.5f);
    const FMRHeader third = parsed(sampleHeader("3"));
    EXPECT_EQ(third.ProtocolFiles, QStringList{"my runs/a.prt"});
    EXPECT_EQ(third.position.columnDirection, (Vector3{10, 11, 12}));
    EXPECT_EQ(third.ResolutionX, 8) << "not that of the position block";
    EXPECT_FALSE(third.radiologicalConvention);
    EXPECT_EQ(parsed(sampleHeader("3"), FMRScope::Inspection).position.coordinateSystem, 1);
    for (const FMRScope scope : {FMRScope::Project, FMRScope::Inspection}) {
        const FMRHeader fifth = parsed(sampleHeader("5"), scope);
        EXPECT_EQ(fifth.ProtocolFiles, (QStringList{"a b.prt", "c.prt"}));
        EXPECT_EQ(fifth.pixelSizeY, 3.25f);
    }
}

TEST(FMRFile, RefusesWhatIsNoHeaderOrCutBeforeItsConvention) {
    const QString good = "\n" + sampleHeader("5");
    using enum FMRParseResult;
    // What is replaced by what, and the results for a project and for an inspection.
    const std::tuple<const char*, const char*, FMRParseResult, FMRParseResult> cases[] = {
        {"\nFileVersion", "\x89PNG", UnexpectedTokens, UnexpectedTokens},
        {"FileVersion: 5", "FileVersion: 6", UnsupportedVersion, UnsupportedVersion},
        {"NrOfSlices:", "Slices:", UnexpectedTokens, Ok},
        {"PositionInformation", "Position", UnexpectedTokens, Ok},
        {"NrOfVolumes: 40", "NrOfVolumes: -1", ImpossibleSizes, ImpossibleSizes},
        {"NrOfSlices: 3", "NrOfSlices: 2000000000", ImpossibleSizes, ImpossibleSizes},
        {"Protocols: 2", "Protocols: 2147483647", UnexpectedTokens, UnexpectedTokens}};
    for (const auto& [from, to, project, inspection] : cases) {
        QString bad = good;
        bad.replace(from, to);
        FMRHeader header;
        EXPECT_EQ(parseFMR(bad, FMRScope::Project, header), project) << to;
        EXPECT_EQ(parseFMR(bad, FMRScope::Inspection, header), inspection) << to;
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
    const QString text = contentOf(path);
    EXPECT_TRUE(text.startsWith("\nFileVersion:                   5\n"
                                "NrOfVolumes:                   21\n"
                                "NrOfSlices:                    3\n"
                                "NrOfSkippedVolumes:            2\n"
                                "Prefix:                        \"run\"\n"
                                "DataStorageFormat:             2\n"
                                "TR:                            2000\n"));
    EXPECT_TRUE(text.contains("InplaneResolutionX:            3.4375\n"
                              "InplaneResolutionY:            0.1\n"));
    EXPECT_TRUE(text.contains("NRows:            6\nNCols:            8\n"));
    EXPECT_TRUE(text.contains("SliceThickness:   0.33333334\nGapThickness:     0\n"));
    EXPECT_TRUE(text.endsWith("\n\nNrOfPastSpatialTransformations: 0\n\n"
                              "\n\nRadiologicalConvention: NO\n\n\n"
                              "FirstDataSourceFile: \"I.001\"\n"));
    // Every value is read back: it is written again as it was.
    FMRProject again;
    static_cast<FMRHeader&>(again) = parsed(text);
    EXPECT_EQ(fmrText(again, 21), text);
    EXPECT_EQ(again.sliceThickness, 1.0f / 3.0f);
    project.Prefix = "";
    ASSERT_TRUE(writeFMRHeader(project, path, 500));
    EXPECT_TRUE(contentOf(path).contains("Prefix:                        \"<none>\"\n"));
}

TEST(FMRFile, FailuresHaveTheirMessages) {
    QTemporaryDir folder;
    ScriptedMessages messages;
    FMRProject project = sampleProject();
    const QString blocked = folder.filePath("file/run.fmr");
    QFile file(folder.filePath("file"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    messages.expectWarning(
        QString("ERROR: Can not open FMR file \"%1\" for writing!").arg(blocked));
    EXPECT_FALSE(writeFMRHeader(project, blocked, 1));
    FMRHeader header;
    header.NrOfSlices = 77;
    messages.expectWarning("ERROR - Can not read FMR file - unexpected tokens encountered!");
    EXPECT_FALSE(readFMRHeader(file.fileName(), header));
    file.write("FileVersion: 9\n");
    file.close();
    messages.expectWarning("ERROR - Unsupported FMR file version\n\nOnly file "
                           "versions \"1\" - \"5\" supported!");
    EXPECT_FALSE(readFMRHeader(file.fileName(), header));
    EXPECT_EQ(header.NrOfSlices, 77);
}
