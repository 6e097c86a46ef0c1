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

constexpr Vector3 none{0, 0, 0};

TEST(PositionFile, EachVersion) {
    struct Row {
        const char* file;
        int version, system;
        Vector3 first, last;
    };
    for (const auto& [name, version, system, first, last] :
         {Row{"version1.pos", 1, 3, none, none}, Row{"version2.pos", 2, 2, none, none},
          Row{"version3.pos", 3, 2, {-4.5f, 8, -20}, {1.5f, -2, 30.25f}}}) {
        SCOPED_TRACE(name);
        PositionFile file;
        ASSERT_TRUE(parsePositions(corpusText(QString("pos/") + name), file));
        EXPECT_EQ(file.version, version);
        EXPECT_EQ(file.position.coordinateSystem, system);
        EXPECT_EQ(file.position.positionInfoValid, version == 3);
        EXPECT_EQ(file.position.sliceCenterFirst, first);
        EXPECT_EQ(file.position.sliceCenterLast, last);
        EXPECT_EQ(file.position.rowDirection, (Vector3{1, 0, 0}));
        EXPECT_EQ(file.position.columnDirection, (Vector3{0, 0.6f, -0.8f}));
        EXPECT_TRUE(file.rows == 128 && file.columns == 64 && file.position.fovRows == 256.0f &&
                    file.position.fovColumns == 192.5f && file.sliceThickness == 3.0f &&
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
}

TEST(TransformationFile, EachForm) {
    struct Row {
        const char* file;
        bool taken, first, second;
        int type, system, volumes;
    };
    for (const Row& row : {Row{"version5.trf", true, true, false, 2, 0, 0},
                           {"version3.trf", true, false, false, 1, 1, 4},
                           {"version4.trf", true, true, false, 1, 1, 4},
                           {"two_matrices.trf", true, true, true, 1, 1, 4},
                           {"one_of_two.trf", true, true, false, 1, 1, 4},
                           {"brain_ACPC.trf", true, true, false, 2, 0, 0},
                           {"other_format.trf", true, false, false, 2, 0, 0},
                           {"version2.trf", false, false, false, 0, 2, 0},
                           {"second_cut.trf", false, false, false, 0, 2, 0},
                           {"not_a_number.trf", false, false, false, 0, 2, 0}}) {
        SCOPED_TRACE(row.file);
        TransformationFile file;
        EXPECT_EQ(parseTransformation(corpusText(QString("trf/") + row.file), row.file, file),
                  row.taken);
        EXPECT_TRUE(file.hasMatrix == row.first && file.hasSecondMatrix == row.second);
        EXPECT_TRUE(file.TransformationType == row.type && file.CoordinateSystem == row.system &&
                    file.NrOfTransformationVolumes == row.volumes);
        EXPECT_EQ(file.matrices[0].at(1, 3), row.first ? -12345.6748046875f : 0.0f);
        EXPECT_EQ(file.matrices[0].at(2, 1), row.first ? 2.25f : 0.0f);
        EXPECT_EQ(file.matrices[1].at(1, 3), row.second ? 8.0f : 0.0f);
    }
}

TEST(TransformationFile, TheNameDecidesOnTheFramingCube) {
    const QString text = corpusText("trf/brain_ACPC.trf");
    for (const char* name : {"a_ACPC.trf", "/b/a_aACPC.trf"}) {
        TransformationFile file;
        ASSERT_TRUE(parseTransformation(text, name, file) && file.framingCube) << name;
        EXPECT_TRUE(file.framingCube->side == 384 && file.framingCube->value == 0.5f) << name;
    }
    TransformationFile file;
    EXPECT_TRUE(parseTransformation(text, "a_TAL.trf", file) && !file.framingCube);
}

TEST(TransformationFile, IsWrittenByteForByte) {
    C3dMatrix matrix;
    matrix.at(0, 3) = 0.1f;
    matrix.at(1, 1) = -0.5f;
    matrix.at(1, 2) = 1e-7f;
    matrix.at(1, 3) = -12345.675f;
    matrix.at(2, 1) = 2.25f;
    matrix.at(2, 3) = 3.0f;
    EXPECT_EQ(QString(transformationText(matrix, "a b.fmr", "\"c\".vmr")),
              corpusText("trf/version5.trf"));
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
    const QTemporaryDir folder;
    const QString& path = folder.path(); // a folder is no file
    const QString cut = folder.filePath("cut");
    writeFile(cut, "FileVersion: 4 1 2");
    const QString damaged =
        "ERROR: The %1 file \"%2\" is damaged: it ends too early, or has no number where one "
        "belongs !";
    ScriptedMessages messages;
    messages.expectWarning(QString("ERROR: Can not open POS file: \"%1\" !").arg(path));
    messages.expectWarning(QString("ERROR: Can not open TAL file \"%1\" !").arg(path));
    messages.expectWarning(QString("ERROR: Can not open TRF file: \"%1\" !").arg(path));
    messages.expectWarning(damaged.arg("POS", cut));
    messages.expectWarning(damaged.arg("TAL", cut));
    PositionFile positions;
    TalairachPoints points;
    TransformationFile transformation;
    EXPECT_FALSE(readPositionFile(path, positions));
    EXPECT_FALSE(readTalairachFile(path, points));
    EXPECT_FALSE(readTransformationFile(path, transformation));
    EXPECT_FALSE(readPositionFile(cut, positions));
    EXPECT_FALSE(readTalairachFile(cut, points));
    EXPECT_FALSE(parsePositions(corpusText("pos/huge_number.pos"), positions));
    EXPECT_FALSE(parseTalairachPoints(corpusText("tal/seven_points.tal"), points));
}

} // namespace
