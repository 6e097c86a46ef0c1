// The file of a whole-run model: its bytes, and files that are cut or lie.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/glm_file.h"

#include "support/files.h"
#include "support/scripted_messages.h"

#include <QTemporaryDir>
#include <csignal>
#include <gtest/gtest.h>
#include <sys/resource.h>

namespace {

constexpr VolumeSize exampleSize{3, 2, 2};

/// Written by make_glm_files.py.
QString madeFile(const char* name) {
    return QStringLiteral(VELO_SOURCE_DIR "/tests/fuzz/corpus/glm/") + name;
}

GLMParseResult parse(const QByteArray& bytes, WholeRunModel& model) {
    const std::vector<uint8_t> exact(bytes.begin(), bytes.end());
    return parseGLM(exact, exampleSize, model);
}

class GLMFile : public testing::Test {
protected:
    ScriptedMessages messages;
    QTemporaryDir folder;
    QString path = folder.filePath("run.glm");
};

TEST_F(GLMFile, IsReadAndWrittenByteForByte) {
    for (const bool corrected : {false, true}) {
        const QString made = madeFile(corrected ? "two_studies_corrected.glm" : "two_studies.glm");
        WholeRunModel model;
        ASSERT_TRUE(readGLMFile(made, exampleSize, model));
        EXPECT_EQ(model.studies,
                  (std::vector<GLMStudy>{{3, "/d/a.fmr", "/d/a.rtc", 1}, {2, "/d/b.fmr", "", 1}}));
        EXPECT_EQ(model.predictors[0].name, "Füße");
        EXPECT_EQ(model.predictors[0].color, (RgbColor{255, 0, 1}));
        EXPECT_EQ(model.predictors[1].label, QString::fromLatin1("\xc3\xa4"));
        EXPECT_EQ(model.predictors[1].name, "Кисть");
        EXPECT_EQ(model.transformation, ZTransformation::StudyModel);
        EXPECT_EQ(model.separation, SeparatePredictors::Studies);
        EXPECT_EQ(model.CorrectSerialCorrelations, corrected);
        EXPECT_EQ(model.MeanAR1After, corrected ? -0.125f : -2.0f);
        EXPECT_EQ(model.GLMDesign[3], -4.5f);
        EXPECT_EQ(model.GLMInverse[3], 0.25f);
        EXPECT_EQ(model.row(8)[11], 33.5f);
        EXPECT_EQ(model.rank, 2);
        EXPECT_TRUE(model.isValid() && model.conditionOfColumn.empty());

        model.GLMType = 2;
        model.predictors[1].color = {2, 300, -1};
        ASSERT_TRUE(writeGLMFile(path, model));
        EXPECT_EQ(model.GLMType, 3);
        EXPECT_EQ(contentOf(path).toHex(), contentOf(made).toHex());
    }
}

TEST_F(GLMFile, IsRefusedWhenCutOrTooLong) {
    const QByteArray good = contentOf(madeFile("two_studies_corrected.glm"));
    WholeRunModel model;
    for (qsizetype length = 0; length < good.size(); length += length < 200 ? 1 : 64) {
        EXPECT_EQ(parse(good.left(length), model), GLMParseResult::Damaged) << length;
        EXPECT_EQ(model.GLMDataPoints(), 0);
        EXPECT_TRUE(model.GLMMaps.empty());
    }
    EXPECT_EQ(parse(good.chopped(1), model), GLMParseResult::Damaged);
    EXPECT_EQ(parse(good + '\0', model), GLMParseResult::Damaged);
    EXPECT_EQ(parse(good, model), GLMParseResult::Ok);
}

TEST_F(GLMFile, IsRefusedWhenItLies) {
    using enum GLMParseResult;
    const QByteArray good = contentOf(madeFile("two_studies.glm"));
    const qsizetype design = good.indexOf("Predictor: 3") + 26;
    // Where bytes are replaced, and by what.
    const std::tuple<qsizetype, const char*, GLMParseResult> cases[] = {
        {0, "0100", Damaged},        // no model
        {0, "0200", Ok},             // not saved yet
        {4, "06000000", Damaged},    // data points
        {4, "ffffffff", Damaged},    //
        {8, "ffffff7f", Damaged},    // predictors
        {8, "00000000", Damaged},    //
        {12, "01000000", Damaged},   // studies
        {16, "03", Damaged},         // transformation
        {17, "ff", Damaged},         // separation
        {18, "0100", OtherDataType}, // resolution
        {20, "02", Damaged},         // correction
        {20, "01", Damaged},         // one map row more
        {21, "0000c07f", Damaged},   // mean that is not a number
        {41, "00000000", Damaged},   // points of a study
        {41, "04000000", Damaged},   //
        {design - 4, "00010000", Damaged},
        {design, "0000807f", Damaged},
        {good.size() - 4, "0000c0ff", Damaged},
    };
    for (const auto& [offset, replacement, result] : cases) {
        const QByteArray change = QByteArray::fromHex(replacement);
        WholeRunModel model;
        EXPECT_EQ(parse(QByteArray(good).replace(offset, change.size(), change), model), result)
            << offset << ' ' << replacement;
    }
    WholeRunModel model;
    const QByteArray endless = good.left(45) + QByteArray(9000, 'x') + good.mid(45);
    EXPECT_EQ(parse(endless, model), Damaged);
}

TEST_F(GLMFile, TellsWhyItIsNotRead) {
    WholeRunModel model;
    ASSERT_TRUE(readGLMFile(madeFile("two_studies.glm"), exampleSize, model));
    messages.expectCritical("ERROR: Unable to open GLM file for reading!");
    EXPECT_FALSE(readGLMFile(path, exampleSize, model));
    EXPECT_TRUE(model.predictors.empty());
    const QByteArray good = contentOf(madeFile("two_studies.glm"));
    QByteArray anatomical = good;
    anatomical[18] = 1;
    const std::tuple<QByteArray, VolumeSize, const char*> cases[] = {
        {anatomical, exampleSize, "You try to read a .VMR GLM into a .FMR project !"},
        {good, {3, 2, 0}, "You try to read a FMR GLM into a VMR or SRF project !"},
        {good, {3, 2, 3}, "Dimensions of FMR GLM do not fit to loaded .FMR project !"},
        {good, {2, 3, 2}, "Dimensions of FMR GLM do not fit to loaded .FMR project !"},
        {good.chopped(4), exampleSize, "GLM file \"*"}};
    for (const auto& [bytes, size, message] : cases) {
        writeFile(path, bytes);
        messages.expectCritical(QString("ERROR: ") + message);
        EXPECT_FALSE(readGLMFile(path, size, model));
    }
}

TEST_F(GLMFile, LeavesTheOldFileWhenTheDiskIsFull) {
    WholeRunModel model;
    ASSERT_TRUE(readGLMFile(madeFile("two_studies.glm"), exampleSize, model));
    writeFile(path, "old");
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{100, before.rlim_max};
    EXPECT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
    messages.expectCritical("ERROR: Unable to open GLM VTC map file for writing!");
    const bool written = writeGLMFile(path, model);
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
    EXPECT_FALSE(written);
    EXPECT_EQ(contentOf(path), "old");

    WholeRunModel invalid;
    for (WholeRunModel* each : {&model, &invalid}) {
        messages.expectCritical("ERROR: Unable to open GLM VTC map file for writing!");
        EXPECT_FALSE(writeGLMFile(each == &model ? folder.path() : path, *each));
    }
    EXPECT_EQ(contentOf(path), "old");
}

} // namespace
