// The file of a whole-run model: its bytes, and files that are cut or lie.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/glm_file.h"

#include "support/files.h"
#include "support/scripted_messages.h"

#include <QTemporaryDir>
#include <csignal>
#include <cstring>
#include <gtest/gtest.h>
#include <sys/resource.h>

namespace {

constexpr VolumeSize exampleSize{3, 2, 2};

/// Two studies of 3 and 2 points and p = 3. The names need Latin-1, UTF-8 and UTF-8 again: the
/// Latin-1 bytes of the label are valid UTF-8 of another text.
WholeRunModel exampleModel(bool corrected) {
    WholeRunModel model;
    model.GLMType = 2;
    model.size = exampleSize;
    model.studies = {{3, "/d/a.fmr", "/d/a.rtc", 1}, {2, "/d/b.fmr", "", 1}};
    model.predictors = {{"Predictor: 1", "Füße", {255, 0, 1}},
                        {QString::fromLatin1("\xc3\xa4"), "Кисть", {2, 300, -1}},
                        {"Predictor: 3", "", {255, 255, 255}}};
    model.transformation = ZTransformation::StudyModel;
    model.separation = SeparatePredictors::Studies;
    model.CorrectSerialCorrelations = corrected;
    if (corrected) {
        model.MeanAR1Before = 0.25f;
        model.MeanAR1After = -0.125f;
    }
    for (int i = 0; i < 15; ++i)
        model.GLMDesign.push_back(float(i) - 7.5f);
    for (int i = 0; i < 9; ++i)
        model.GLMInverse.push_back(1.0f / float(i + 1));
    EXPECT_TRUE(model.GLMMaps.allocate(size_t(model.nrOfMapRows()) * exampleSize.samples()));
    for (size_t i = 0; i < model.GLMMaps.size(); ++i)
        model.GLMMaps[i] = float(i) * 0.5f - 20.0f;
    EXPECT_TRUE(deriveFromDesign(model));
    return model;
}

/// Appends the bytes of a number. The machine is little endian, like the file.
template<typename Number> void add(QByteArray& bytes, Number number) {
    bytes.append(reinterpret_cast<const char*>(&number), sizeof(number));
}

QByteArray expectedBytes(const WholeRunModel& model, bool corrected) {
    QByteArray bytes = QByteArray::fromHex("0300 0000 05000000 03000000 02000000 02 01 0300");
    add(bytes, int8_t(corrected));
    add(bytes, corrected ? 0.25f : -2.0f);
    add(bytes, corrected ? -0.125f : -2.0f);
    bytes += QByteArray::fromHex("0300 0200 0200 00 ffffffff 00");
    bytes += QByteArray("\3\0\0\0/d/a.fmr\0/d/a.rtc\0\2\0\0\0/d/b.fmr\0\0", 36);
    bytes += QByteArray("Predictor: 1\0F\xfc\xdf"
                        "e\0\xff\0\0\0\0\0\0\0\1\0\0\0",
                        30);
    bytes += QByteArray("\xc3\x83\xc2\xa4\0", 5) + QString("Кисть").toUtf8();
    bytes += QByteArray("\0\2\0\0\0\xff\0\0\0\0\0\0\0", 13);
    bytes += QByteArray("Predictor: 3\0\0\xff\0\0\0\xff\0\0\0\xff\0\0\0", 26);
    for (int i = 0; i < 15; ++i)
        add(bytes, float(i) - 7.5f);
    for (int i = 0; i < 9; ++i)
        add(bytes, 1.0f / float(i + 1));
    for (size_t i = 0; i < model.GLMMaps.size(); ++i)
        add(bytes, float(i) * 0.5f - 20.0f);
    return bytes;
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

TEST_F(GLMFile, HasEachByteAndComesBack) {
    for (const bool corrected : {false, true}) {
        WholeRunModel model = exampleModel(corrected);
        ASSERT_TRUE(writeGLMFile(path, model));
        EXPECT_EQ(model.GLMType, 3);
        const QByteArray bytes = contentOf(path);
        EXPECT_EQ(bytes.toHex(), expectedBytes(model, corrected).toHex());

        WholeRunModel read;
        ASSERT_TRUE(readGLMFile(path, exampleSize, read));
        EXPECT_EQ(read.rank, model.rank);
        EXPECT_TRUE(read.isValid() && read.conditionOfColumn.empty());
        ASSERT_TRUE(writeGLMFile(path, read));
        EXPECT_EQ(contentOf(path).toHex(), bytes.toHex());
    }
}

TEST_F(GLMFile, IsRefusedWhenCutOrTooLong) {
    const QByteArray good = expectedBytes(exampleModel(true), true);
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
    const QByteArray good = expectedBytes(exampleModel(false), false);
    const qsizetype design = good.indexOf("Predictor: 3") + 26;
    // Where bytes are replaced, and by what.
    const std::tuple<qsizetype, const char*, GLMParseResult> cases[] = {
        {0, "0100", Damaged},        // no model
        {0, "0200", Ok},             // not saved yet
        {4, "06000000", Damaged},    // data points
        {4, "ffffff7f", Damaged},    //
        {4, "ffffffff", Damaged},    //
        {8, "ffffff7f", Damaged},    // predictors
        {8, "00000000", Damaged},    //
        {12, "ffffff7f", Damaged},   // studies
        {12, "01000000", Damaged},   //
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
    WholeRunModel model = exampleModel(false);
    messages.expectCritical("ERROR: Unable to open GLM file for reading!");
    EXPECT_FALSE(readGLMFile(path, exampleSize, model));
    EXPECT_TRUE(model.predictors.empty());
    const QByteArray good = expectedBytes(exampleModel(false), false);
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
    WholeRunModel model = exampleModel(false);
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
    EXPECT_EQ(model.GLMType, 2);
}

} // namespace
