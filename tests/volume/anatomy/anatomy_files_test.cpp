// Positions, transformations and reference points: files of make_anatomy_files.py.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/files.h"
#include "support/scripted_messages.h"
#include "support/test_data.h"
#include "volume/anatomy/pos_file.h"
#include "volume/anatomy/tal_file.h"
#include "volume/anatomy/trf_file.h"

#include <QTemporaryDir>

namespace {

TEST(PositionFile, EachVersion) {
    for (const auto& [version, system] : {std::pair{1, 3}, {2, 2}, {3, 2}}) {
        SCOPED_TRACE(version);
        PositionFile file;
        ASSERT_TRUE(parsePositions(corpusText(QString("pos/version%1.pos").arg(version)), file));
        const FMRPositionInfo& position = file.position;
        EXPECT_TRUE(file.version == version && position.coordinateSystem == system);
        EXPECT_EQ(position.positionInfoValid, version == 3);
        EXPECT_EQ(position.sliceCenterFirst, version < 3 ? Vector3{} : (Vector3{-4.5f, 8, -20}));
        EXPECT_EQ(position.sliceCenterLast, version < 3 ? Vector3{} : (Vector3{1.5f, -2, 30.25f}));
        EXPECT_EQ(position.rowDirection, (Vector3{1, 0, 0}));
        EXPECT_EQ(position.columnDirection, (Vector3{0, 0.6f, -0.8f}));
        EXPECT_TRUE(file.rows == 128 && file.columns == 64 && position.fovRows == 256.0f &&
                    position.fovColumns == 192.5f && file.sliceThickness == 3.0f &&
                    file.gapThickness == 0.75f);
    }
}

/// A text that ends between any two of its words is refused and changes nothing.
template<typename File, typename Parse>
void expectCutsRefused(const QString& name, int File::*marker, Parse parse) {
    const QString text = corpusText(name).simplified();
    File file;
    for (qsizetype words = 1; words <= text.count(' '); ++words) {
        file.*marker = 99;
        EXPECT_FALSE(parse(text.section(' ', 0, words - 1), file)) << words;
        EXPECT_EQ(file.*marker, 99) << words;
    }
    EXPECT_TRUE(parse(text, file)) << name.toStdString();
}

TEST(AnatomyTexts, CutOffAnywhere) {
    expectCutsRefused("pos/version3.pos", &PositionFile::version, parsePositions);
    expectCutsRefused("tal/version2.tal", &TalairachPoints::version, parseTalairachPoints);
    expectCutsRefused("trf/two_matrices.trf", &TransformationFile::TransformationType,
                      [](const QString& text, TransformationFile& file) {
                          return parseTransformation(text, "a.trf", file);
                      });
    PositionFile positions;
    EXPECT_FALSE(parsePositions(corpusText("pos/huge_number.pos"), positions));
}

TEST(TransformationFile, EachForm) {
    struct Row {
        const char* name;
        bool taken, first, second;
        int type, system, volumes;
        float framed;
    };
    for (const Row& row : {Row{"version5.trf", true, true, false, 2, 0, 0, 0},
                           {"version3.trf", true, false, false, 1, 1, 4, 0},
                           {"version4.trf", true, true, false, 1, 1, 4, 0},
                           {"two_matrices.trf", true, true, true, 1, 1, 4, 0},
                           {"one_of_two.trf", true, true, false, 1, 1, 4, 0},
                           {"brain_ACPC.trf", true, true, false, 2, 0, 0, 0.5f},
                           {"brain_aACPC.trf", true, true, false, 2, 0, 0, 0.5f},
                           {"brain_TAL.trf", true, true, false, 2, 0, 0, 0},
                           {"other_format.trf", true, false, false, 2, 0, 0, 0},
                           {"version2.trf", false, false, false, 0, 2, 0, 0},
                           {"not_a_number.trf", false, false, false, 0, 2, 0, 0}}) {
        SCOPED_TRACE(row.name);
        TransformationFile file;
        EXPECT_EQ(parseTransformation(corpusText(QString("trf/") + row.name), row.name, file),
                  row.taken);
        EXPECT_TRUE(file.hasMatrix == row.first && file.hasSecondMatrix == row.second);
        EXPECT_TRUE(file.TransformationType == row.type && file.CoordinateSystem == row.system &&
                    file.NrOfTransformationVolumes == row.volumes);
        EXPECT_EQ(file.matrices[0].at(1, 3), row.first ? -12345.6748046875f : 0.0f);
        EXPECT_EQ(file.matrices[0].at(2, 1), row.first ? 2.25f : 0.0f);
        EXPECT_EQ(file.matrices[1].at(1, 3), row.second ? 8.0f : 0.0f);
        EXPECT_EQ(file.framingCube ? file.framingCube->value : 0.0f, row.framed);
    }
}

TEST(TransformationFile, IsWrittenByteForByte) {
    const QString text = corpusText("trf/version5.trf");
    TransformationFile file;
    ASSERT_TRUE(parseTransformation(text, "", file));
    EXPECT_EQ(QString(transformationText(file.matrices[0], "a b.fmr", "\"c\".vmr")), text);
}

TEST(TalairachFile, EachVersion) {
    for (const auto& [name, vmrName] : {std::pair{"version1.tal", "my first brain.vmr"},
                                        {"version1_stated.tal", "my first brain.vmr"},
                                        {"version2.tal", "my brain.vmr"}}) {
        SCOPED_TRACE(name);
        TalairachPoints points;
        ASSERT_TRUE(parseTalairachPoints(corpusText(QString("tal/") + name), points));
        EXPECT_EQ(points.vmrName, vmrName);
        EXPECT_EQ(points.referencePoint1, (CubePoint{1, 0, 0}));
        EXPECT_EQ(points.referencePoint6, (CubePoint{6, 50, -5}));
        EXPECT_EQ(points.referencePoint8, (CubePoint{7, 60, -6})) << "the seventh line";
        EXPECT_EQ(points.referencePoint7, (CubePoint{8, 70, -7})) << "the eighth line";
    }
}

TEST(AnatomyTexts, MessagesOfFilesThatCannotBeRead) {
    const QTemporaryDir folder; // a folder is no file
    const QString cut = folder.filePath("cut");
    writeFile(cut, "FileVersion: 4 1 2");
    ScriptedMessages messages;
    messages.expectWarning("ERROR: Can not open POS file: \"" + folder.path() + "\" !");
    messages.expectWarning("ERROR: Can not open TAL file \"" + folder.path() + "\" !");
    messages.expectWarning("ERROR: The POS file \"" + cut + "\" is damaged: *");
    messages.expectWarning("ERROR: The TAL file \"" + cut + "\" is damaged: *");
    messages.expectWarning("ERROR: Can not open TRF file: \"" + folder.path() + "\" !");
    PositionFile positions;
    TalairachPoints points;
    TransformationFile transformation;
    for (const QString& path : {folder.path(), cut})
        EXPECT_TRUE(!readPositionFile(path, positions) && !readTalairachFile(path, points));
    EXPECT_FALSE(readTransformationFile(folder.path(), transformation));
}

} // namespace
