// The contrast file: its layout, its versions, and invalid files.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/contrast_file.h"

#include "support/files.h"
#include "support/test_data.h"

#include <QTemporaryDir>

namespace {

/// Three conditions, the first of them the baseline.
DesignMatrix threeConditions() {
    DesignMatrix design;
    design.NrOfContrastPredictors = 3;
    design.NrOfConditionPredictors = 2;
    design.NrOfPredictors = 4;
    return design;
}

ContrastDefinitions twoContrasts() {
    ContrastDefinitions contrasts;
    contrasts.NrOfContrasts = 2;
    contrasts.ContrastNames = {"A vs. Rest", "B \"odd\""};
    contrasts.ContrastValues = {{-1, 1, 0}, {100, -10, -99}};
    contrasts.ContrastSelectionStates = {1, 3};
    contrasts.ContrastColors = {{255, 0, 0}, {1, 20, 128}};
    return contrasts;
}

const QString versionThree = corpusText("ctr/version3.ctr");

TEST(ContrastFile, IsWrittenInItsLayoutAndReadBack) {
    QTemporaryDir folder;
    const QString path = folder.filePath("run.ctr");
    ASSERT_TRUE(writeContrastFile(path, twoContrasts(), 3));
    EXPECT_EQ(QString(contentOf(path)), versionThree);
    ContrastDefinitions read;
    ASSERT_TRUE(readContrastFile(path, read, threeConditions(), 3));
    EXPECT_EQ(read.ContrastWeights,
              (std::vector<std::vector<int>>{{1, 0, 0, 0}, {-10, -99, 0, 0}}));
    ASSERT_TRUE(writeContrastFile(path, read, 3));
    EXPECT_EQ(QString(contentOf(path)), versionThree);
}

TEST(ContrastFile, OlderVersionsStoreValuesByPredictor) {
    ContrastDefinitions read;
    read.BaselineInContrasts = 0;
    QString message;
    ASSERT_TRUE(parseContrasts("FileVersion: 2 NrOfContrasts: 2 NrOfValues: 3\n"
                               "\"first\" \"second\"\n-1 0\n1 -1\n0 1\n10 20 300\n40 50 60",
                               read, threeConditions(), 3, message));
    EXPECT_EQ(read.ContrastNames, QStringList({"first", "second"}));
    EXPECT_EQ(read.ContrastValues, (std::vector<std::vector<int>>{{-1, 1, 0}, {0, -1, 1}}));
    EXPECT_EQ(read.ContrastSelectionStates, std::vector<int>({1, 1}));
    EXPECT_EQ(read.ContrastColors, (std::vector<RgbColor>{{10, 20, 255}, {40, 50, 60}}));
    EXPECT_EQ(read.BaselineInContrasts, 1);
}

TEST(ContrastFile, BadTextIsRefusedAndChangesNothing) {
    const QString baseline = "ERROR: Contrast file states %1 as position of the baseline, which "
                             "contradicts the model. Check \"BaselinePosInProtocol:\" and "
                             "\"BaselineInContrasts:\"!";
    const auto with = [&](const char* before, const char* after) {
        return QString(versionThree).replace(before, after);
    };
    const QString damaged = "ERROR: Contrast file is damaged or ends too early!";
    const std::pair<QString, QString> cases[] = {
        {"", "ERROR: Can not read file. This file appears not to be a \"contrast (.ctr)\" file!"},
        {with("FileVersion:           3", "FileVersion: 4"),
         "ERROR: Can not read this new version of contrast files!"},
        {with("NrOfValues:            3", "NrOfValues: 5"),
         "ERROR: Contrast file contains values for 5 predictors\nwhich does not fit current "
         "contrasts with 3 predictors"},
        {with("BaselinePosInProtocol: 1", "BaselinePosInProtocol: 0"), baseline.arg(0)},
        {with("BaselinePosInProtocol: 1", "BaselinePosInProtocol: 4"), baseline.arg(4)},
        {with("NrOfContrasts:         2", "NrOfContrasts: 2147483647"), damaged},
        {versionThree.chopped(5), damaged},
    };
    for (const auto& [text, expected] : cases) {
        ContrastDefinitions contrasts = twoContrasts();
        QString message;
        EXPECT_FALSE(parseContrasts(text, contrasts, threeConditions(), 3, message));
        EXPECT_EQ(message, expected) << text.toStdString();
        EXPECT_EQ(contrasts.ContrastValues, twoContrasts().ContrastValues);
    }
}

} // namespace
