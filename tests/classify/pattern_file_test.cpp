// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/pattern_file.h"

#include "classify/feature_scaling.h"
#include "support/files.h"
#include "support/scripted_messages.h"

#include <QTemporaryDir>
#include <cmath>
#include <gtest/gtest.h>

namespace {

/// Two exemplars of two features, with numbers that need all their digits.
PatternSet twoExemplars() {
    PatternSet patterns;
    patterns.nrOfFeatures = 2;
    patterns.append(1, std::vector{0.1, -2.0});
    patterns.append(-1, std::vector{1e-300, double(0.7F)});
    return patterns;
}

const QByteArray twoExemplarsText = "FileVersion:   1\n\nNrOfExemplars: 2\nNrOfFeatures:  2\n\n"
                                    "  1  0.10000000000000001 -2\n"
                                    " -1  1e-300 0.69999998807907104\n";

TEST(PatternFile, HasTheBytesOfBothForms) {
    QByteArray expected = QByteArray::fromHex("0100 02000000 02000000");
    for (const double value : {1.0, 0.1, -2.0, -1.0, 1e-300, double(0.7F)})
        expected += QByteArray(reinterpret_cast<const char*>(&value), sizeof value);
    EXPECT_EQ(patternFileContent(twoExemplars(), PatternFileForm::Binary), expected);
    EXPECT_EQ(patternFileContent(twoExemplars(), PatternFileForm::Text), twoExemplarsText);
}

TEST(PatternFile, ReadsBothFormsWithTheirRuns) {
    const QTemporaryDir folder;
    const ScriptedMessages messages;
    const QString path = folder.filePath("Train.v2_A-B.mvp");
    for (const PatternFileForm form : {PatternFileForm::Binary, PatternFileForm::Text}) {
        PatternSet patterns = twoExemplars();
        patterns.runs = {0, 2};
        ASSERT_TRUE(writePatternFile(path, patterns, form));
        EXPECT_EQ(contentOf(folder.filePath("Train.v2_A-B_runs.txt")),
                  "FileVersion:   1\n\nNrOfExemplars: 2\n\n1\n3\n");
        PatternSet read;
        ASSERT_TRUE(readPatternFile(path, read));
        EXPECT_EQ(read.labels, patterns.labels);
        EXPECT_EQ(read.values, patterns.values);
        EXPECT_EQ(read.nrOfFeatures, 2);
        EXPECT_EQ(read.runs, patterns.runs);
        // Patterns of unknown runs leave no list of others.
        ASSERT_TRUE(writePatternFile(path, twoExemplars(), form));
        ASSERT_TRUE(readPatternFile(path, read));
        EXPECT_TRUE(read.runs.empty());
    }
}

TEST(PatternFile, IgnoresAListOfRunsThatDoesNotFit) {
    const QTemporaryDir folder;
    const QString path = folder.filePath("Train.mvp");
    ASSERT_TRUE(writePatternFile(path, twoExemplars(), PatternFileForm::Binary));
    for (const char* list :
         {"", "FileVersion: 1 NrOfExemplars: 3 1 2", "FileVersion: 2 NrOfExemplars: 2 1 2",
          "FileVersion: 1 NrOf: 2 1 2", "FileVersion: 1 NrOfExemplars: 2 1",
          "FileVersion: 1 NrOfExemplars: 2 0 1", "FileVersion: 1 NrOfExemplars: 2 1 2 3"}) {
        SCOPED_TRACE(list);
        writeFile(patternRunsPath(path), list);
        ScriptedMessages messages;
        messages.expectWarning("WARNING: \"" + patternRunsPath(path) + "\" does not give the run*");
        PatternSet patterns;
        EXPECT_TRUE(readPatternFile(path, patterns));
        EXPECT_TRUE(patterns.runs.empty());
        EXPECT_EQ(messages.shownModeless().size(), 1);
    }
}

void expectFault(const QByteArray& content, const char* fault) {
    SCOPED_TRACE(content.toPercentEncoding(" \n:").toStdString());
    PatternSet patterns = twoExemplars();
    QString found;
    EXPECT_FALSE(parsePatternFile(content, patternFileForm(content), patterns, found));
    EXPECT_TRUE(found.contains(fault)) << found.toStdString();
    EXPECT_EQ(patterns.values, twoExemplars().values);
}

TEST(PatternFile, RefusesDamagedContents) {
    const QByteArray binary = patternFileContent(twoExemplars(), PatternFileForm::Binary);
    for (qsizetype bytes = 0; bytes < binary.size(); ++bytes)
        expectFault(binary.left(bytes), "fewer numbers");
    expectFault(binary + '\0', "more data");
    // Where bytes are replaced, and by what.
    constexpr std::tuple<int, const char*, const char*> bytes[] = {
        {0, "0200", "its version is 2, not 1"},
        {2, "ffffff7fffffff7f", "fewer numbers"},
        {2, "00000000", "no exemplars or no features"},
        {6, "ffffffff", "no exemplars or no features"},
        {2, "01000000", "more data"},
        {10, "000000000000f87f", "the label of exemplar 1 is not a finite number"},
        {50, "000000000000f07f", "feature 2 of exemplar 2 is not a finite number"}};
    for (const auto& [at, hex, fault] : bytes) {
        const QByteArray replaced = QByteArray::fromHex(hex);
        expectFault(QByteArray(binary).replace(at, replaced.size(), replaced), fault);
    }
    constexpr std::tuple<const char*, const char*, const char*> texts[] = {
        {"FileVersion:   1", "FileVersion: one", "its first line"},
        {"NrOfFeatures", "NrOfExemplars", "are damaged"},
        {"Exemplars: 2", "Exemplars: 2147483647", "fewer numbers"},
        {"Exemplars: 2", "Exemplars: 3", "fewer numbers"},
        {"-2", "inf", "feature 2 of exemplar 1 is not a finite number"},
        {" -1 ", "one", "the label of exemplar 2 is not a finite number"},
        {"7104\n", "7104\n0\n", "more data"}};
    for (const auto& [from, to, fault] : texts)
        expectFault(QByteArray(twoExemplarsText).replace(from, to), fault);
}

TEST(PatternFile, SaysWhatCanNotBeReadOrWritten) {
    const QTemporaryDir folder;
    ScriptedMessages messages;
    PatternSet patterns;
    const QString path = folder.filePath("Test.mvp");
    messages.expectCritical("Unable to open multi-voxel pattern file \"" + path +
                            "\" for reading!");
    EXPECT_FALSE(readPatternFile(path, patterns));
    writeFile(path, "FileVersion: 3");
    messages.expectCritical("ERROR: The multi-voxel pattern file \"" + path +
                            "\" can not be used: its version is 3, not 1.");
    EXPECT_FALSE(readPatternFile(path, patterns));
    messages.expectCritical("Unable to open multi-voxel pattern file for writing!");
    EXPECT_FALSE(writePatternFile(folder.filePath("none/Test.mvp"), twoExemplars(),
                                  PatternFileForm::Binary));
}

PatternSet threeExemplars() {
    PatternSet patterns;
    patterns.nrOfFeatures = 3;
    for (const double value : {1.0, 2.0, 6.0})
        patterns.append(value, std::vector{value, 5.0, 2e7 + value});
    return patterns;
}

TEST(FeatureScaling, LearnsAndAppliesEachMode) {
    // Feature 1: mean 3, population deviation sqrt(14/3). Feature 2 does not vary. Feature 3 lies
    // above the value that the search for its minimum starts from.
    const double deviation = std::sqrt(14.0 / 3.0);
    const auto learnt = [](ScalingMode mode) {
        return learnScaling(threeExemplars(), {mode, -1.0, 3.0});
    };
    PatternSet patterns = threeExemplars();
    applyScaling(learnt(ScalingMode::None), patterns);
    EXPECT_EQ(patterns.values, threeExemplars().values);

    const FeatureScaling standardized = learnt(ScalingMode::Standardize);
    EXPECT_EQ(standardized.deviation[1], 1.0);
    applyScaling(standardized, patterns);
    EXPECT_NEAR(patterns.features(2)[0], 3.0 / deviation, 1e-15);
    EXPECT_EQ(patterns.features(2)[1], 0.0);
    EXPECT_NEAR(patterns.features(0)[2], -2.0 / deviation, 1e-8);

    patterns = threeExemplars();
    const FeatureScaling ranged = learnt(ScalingMode::Range);
    EXPECT_EQ(ranged.minimum, (std::vector{1.0, 5.0, 1e7}));
    EXPECT_EQ(ranged.maximum, (std::vector{6.0, 5.0, 2e7 + 6.0}));
    applyScaling(ranged, patterns);
    EXPECT_NEAR(patterns.features(1)[0], (2.0 - 1.0) / 5.0 * 4.0 - 1.0, 1e-15);
    EXPECT_EQ(patterns.features(1)[1], 5.0);
    EXPECT_NEAR(patterns.features(0)[2], 10000001.0 / 10000006.0 * 4.0 - 1.0, 1e-15);
}

TEST(FeatureScaling, DividesDeviationsThatAreTooSmallByOne) {
    PatternSet patterns;
    patterns.nrOfFeatures = 2;
    patterns.append(1, std::vector{-0.00011, -0.00009});
    patterns.append(1, std::vector{0.00011, 0.00009});
    const FeatureScaling scaling = learnScaling(patterns, {ScalingMode::Standardize});
    EXPECT_NEAR(scaling.deviation[0], 0.00011, 1e-18);
    EXPECT_EQ(scaling.deviation[1], 1.0);
}

TEST(FeatureScaling, IsReportedAndKeptInAFile) {
    EXPECT_EQ(scalingPath("/data/Model_A.x.svm"), "/data/Model_A.x_scaling.txt");
    EXPECT_EQ(scalingReport({ScalingMode::None}), "");
    using enum ScalingMode;
    for (const ScalingMode mode : {None, Standardize, Range}) {
        const FeatureScaling scaling = learnScaling(threeExemplars(), {mode, -0.1, 0.3});
        const QByteArray text = scalingText(scaling);
        EXPECT_EQ(parseScaling(text), scaling);
        for (qsizetype end = text.trimmed().lastIndexOf(' '); end > 0; end -= 3)
            EXPECT_FALSE(parseScaling(text.left(end))) << text.left(end).toStdString();
        EXPECT_FALSE(parseScaling(text + "1 1\n"));
    }
    const QString text = scalingText(learnScaling(threeExemplars(), {ScalingMode::Standardize}));
    constexpr std::pair<const char*, const char*> damages[] = {
        {"FileVersion:  1", "FileVersion:  2"},
        {"Mode:  1", "Mode:  3"},
        {"Mode:  1", "Mode:  0"},
        {"5 1\n", "5 0\n"},
        {"Features: 3", "Features: 2147483647"},
        {"5 1\n", "nan 1\n"},
        {"RangeLow", "RangeHigh"}};
    for (const auto& [from, to] : damages)
        EXPECT_FALSE(parseScaling(QString(text).replace(from, to))) << to;
}

} // namespace
