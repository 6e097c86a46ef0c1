// SPDX-License-Identifier: GPL-3.0-or-later
#include "settings_fixture.h"

// The blocks of the types are read by whole runs of every scanner.
TEST_F(SettingsFile, ReadsEveryVersion) {
    const QString versionFour = operatorText("analyze");
    const std::pair<int, QString> cases[] = {
        {1, operatorText("version1")},
        {2, operatorText("version2")},
        {3,
         operatorText("ima").replace("WATCHFOLDERLIST: \"./list.txt\"", "WatchFolder: \"./in\"")},
        {4, versionFour},
        {5, replaced(versionFour, "FileVersion: 4", "FileVersion: 5")}};
    for (const auto& [version, text] : cases) {
        SCOPED_TRACE(version);
        settings = defaultRunSettings();
        settings.settingsFilePath = dir() + "run-1.vco";
        settings.FeedbackTargetFolder = "/of/an/earlier/file/";
        ASSERT_TRUE(readText(text, SettingsUse::Run));
        EXPECT_EQ(settings.FlipSliceOrder, version == 1 ? 2 : 3);
        EXPECT_EQ(settings.FeedbackTargetFolder, dir() + (version == 1 ? "out/" : "fb/"));
        EXPECT_EQ(settings.forceTRDelayRead, version >= 2);
        EXPECT_EQ(settings.ROIColorsFile, version >= 3 ? dir() + "roi.txt" : QString());
        EXPECT_EQ(settings.ImageTransformation, version >= 4 ? 1 : 2);
        EXPECT_EQ(settings.SiemensFirstImageNr, version == 3 ? 17 : 1);
        EXPECT_EQ(settings.SliceThickness, version >= 4 ? 3.0f : 4.0f);
        EXPECT_EQ(settings.pixelSizeY, version >= 4 ? 6.0f : 0.0f);
    }
}

TEST_F(SettingsFile, TakesValuesInTheirForms) {
    ASSERT_TRUE(readText("; a comment\nFILEVERSION 4\n" +
                             replaced(geText(), "FileVersion: 4", "").replace("a run", "two  of"),
                         SettingsUse::Run));
    EXPECT_EQ(settings.Title, "two of");
    EXPECT_EQ(settings.WatchFolder, dir() + "in/");
    EXPECT_EQ(settings.TargetFolder, dir() + "out/");
    EXPECT_TRUE(QDir(dir() + "out").exists());
    // Only 1 means big endian, and another key may replace the colours.
    settings.ROIColorsFile = "before";
    ASSERT_TRUE(readText(geText()
                             .replace("RawDataBigEndian: 0", "RawDataBigEndian: 2")
                             .replace("ROIColorsFile:", "Other:"),
                         SettingsUse::Inspection));
    EXPECT_EQ(settings.byteOrderCode(), ByteOrder::Little);
    EXPECT_EQ(settings.ROIColorsFile, "before");
}

TEST_F(SettingsFile, WhatStandsBehindTheLastKeyIsLeftAloneButForItsOwn) {
    const QString text = geText().trimmed();
    const std::tuple<const char*, int, int> cases[] = {
        {"", 0, 0},
        {"\nNotes: of the operator", 0, 0},
        {"\nMotionCorrectionMethod: 1\n", 1, 0},
        {"\nNrOfThreads: 3 Notes: of the operator", 0, 3},
        {"\nMotionCorrectionMethod: 1\nNrOfThreads: 3\n", 1, 3}};
    for (const auto& [end, method, threads] : cases) {
        settings.MotionCorrectionMethod = 2; // of an earlier file
        settings.NrOfThreads = 2;
        ASSERT_TRUE(readText(text + end, SettingsUse::Inspection)) << end;
        EXPECT_EQ(settings.MotionCorrectionMethod, method) << end;
        EXPECT_EQ(settings.NrOfThreads, threads) << end;
    }
}

TEST_F(SettingsFile, ReportsAWrongKeyByUseAndKeepsWhatCameBefore) {
    const QString text = geText().replace("MatrixSizeX: 64", "MatrixX: 12");
    const QString message = "ERROR: Expected \"MatrixSizeX:\" token but found \"MatrixX:\".\n\n"
                            "Check entry name and order of entries in settings file: \"" +
                            settings.settingsFilePath + "\" !\n";
    messages.expectWarning(message);
    EXPECT_FALSE(readText(text, SettingsUse::Inspection));
    EXPECT_EQ(timerStops, 1);
    EXPECT_EQ(settings.TimeOutSeconds, 7);
    EXPECT_EQ(settings.MatrixSizeX, 12);
    EXPECT_TRUE(programEnd.statuses.empty());
    messages.expectCritical(message);
    EXPECT_FALSE(readText(text, SettingsUse::Run));
    EXPECT_EQ(programEnd.statuses, std::vector<int>{1});
}

TEST_F(SettingsFile, AFileCutAtAnyTokenEndsInOneMessage) {
    messages.acceptAnything();
    for (const char* name : {"overlays", "inplanes", "version1", "version2"}) {
        const QStringList tokens = operatorText(name).simplified().split(' ');
        for (qsizetype length = 0; length < tokens.size(); ++length) {
            const qsizetype shownBefore = messages.shown().size();
            programEnd.statuses.clear();
            const bool good = readText(tokens.mid(0, length).join(' '), SettingsUse::Run);
            // The last key and its value are optional.
            EXPECT_EQ(good, length == tokens.size() - 2) << length << " tokens";
            EXPECT_EQ(messages.shown().size() - shownBefore, good ? 0 : 1) << length << " tokens";
            EXPECT_EQ(programEnd.statuses.size(), good || length == 0 ? 0U : 1U);
        }
    }
}

TEST_F(SettingsFile, MissingAndEmptyFiles) {
    messages.expectCritical("ERROR: \"" + settings.settingsFilePath + "\" file not found!");
    EXPECT_FALSE(readSettingsFile(settings, SettingsUse::Run, {}));
    messages.expectWarning("ERROR - No content in file \"" + settings.settingsFilePath +
                           "\" found!");
    EXPECT_FALSE(readText(" ; only a comment\n", SettingsUse::Run));
    EXPECT_EQ(programEnd.statuses, std::vector<int>{1});
}

TEST_F(SettingsFile, ReadsAMultiRunProject) {
    const QString head = "FileVersion: 4 MergeType: 3 Title: \"\" ParadigmHelpFile: \"\" "
                         "IFISfMRIAnalysisTests: t IFISfMRIAnalysisOptions: t "
                         "MergeAverageTimeCourse: 1 MergeSeparatePredictors: 0 ";
    const QString names = "ProjectName: \"all\" MergeFiles: \"a 1\"\n\"b.vco\"";
    ASSERT_TRUE(readText(head + "TargetFolder: \"./in\" " + names, SettingsUse::Inspection));
    EXPECT_TRUE(settings.MergeType && settings.MergeAverageTimeCourse);
    EXPECT_FALSE(settings.MergeSeparatePredictors);
    EXPECT_EQ(settings.MergeFiles, QStringList({"a 1", "b.vco"}));
    EXPECT_TRUE(describesSeveralRuns(settings.settingsFilePath));

    // What stands behind the names, and the message about it.
    const std::pair<const char*, const char*> options[] = {
        {"MergeZTransformation: 2 MergeSubjects: 1 2 MergeCorrectSerialCorrelations: 1", nullptr},
        {"MergeSubjects: 3 1", nullptr},
        {"MergeZTransformation: 3", "ERROR: Problem reading \"MergeZTransformation\" value (3)*"},
        {"MergeSubjects: 1", "ERROR: \"MergeSubjects\" states 1 subjects for 2 runs.*"},
        {"MergeSubjects: 1 2 3", "ERROR: \"MergeSubjects\" states 3 subjects for 2 runs.*"},
        {"MergeSubjects: 1 0", "ERROR: Problem reading \"MergeSubjects\" value (0)*"},
        {"MergeCorrectSerialCorrelations:",
         "ERROR: Problem reading \"MergeCorrectSerialCorrelations\" value (the file has ended)*"},
        {"MergeSomething: 1", "*"}};
    for (const auto& [text, message] : options) {
        if (message)
            messages.expectWarning(message);
        EXPECT_EQ(readText(head + "TargetFolder: \"./in\" " + names + " " + text,
                           SettingsUse::Inspection),
                  !message)
            << text;
        EXPECT_EQ(settings.MergeFiles.size(), 2);
        if (text == options[0].first) {
            EXPECT_EQ(settings.MergeZTransformation, 2);
            EXPECT_EQ(settings.MergeSubjects, std::vector<int>({1, 2}));
            EXPECT_TRUE(settings.MergeCorrectSerialCorrelations);
        } else if (text == options[1].first) {
            EXPECT_EQ(settings.MergeSubjects, std::vector<int>({3, 1}));
            EXPECT_FALSE(settings.MergeZTransformation || settings.MergeCorrectSerialCorrelations);
        }
    }
}
