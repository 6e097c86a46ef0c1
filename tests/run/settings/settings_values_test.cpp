// SPDX-License-Identifier: GPL-3.0-or-later
#include "settings_fixture.h"

TEST_F(SettingsFile, RefusesValuesThatNoRunCanWorkWith) {
    const QString matrix = "ERROR: Problem reading MatrixSizeX / MatrixSizeY values. Check "
                           "respective entries in settings file!";
    const auto wrong = [](const char* key, const char* value, const char* entries = "entry") {
        return QString("ERROR: Problem reading \"%1\" value (%2). Check respective %3 in settings "
                       "file!")
            .arg(key, value, entries);
    };
    const QString skip = "ERROR: \"NrOfVolumesToSkip\" value (50) must be smaller than "
                         "\"NrOfVolumes\" value (50). Check respective entries in settings file!";
    const QString protocol = "ERROR: Expected \"StimulationProtocol:\" or \"RealTimeProtocol:\" or "
                             "\"TDatFile:\" token but found \"Protocol:\".\nCheck entry name and "
                             "order of entries in settings file!";
    const struct {
        const char* before;
        const char* after;
        QString message; ///< empty: accepted
    } cases[] = {{"MatrixSizeX: 64", "MatrixSizeX: 0", matrix},
                 {"MatrixSizeX: 64", "MatrixSizeX: 4097", matrix},
                 {"MatrixSizeY: 32", "MatrixSizeY: 0", ""},
                 {"Skip: 3", "Skip: 50", skip},
                 {"Skip: 3", "Skip: 49", ""},
                 {"Skip: 3", "Skip: -1", wrong("NrOfVolumesToSkip", "-1")},
                 {"NrOfSlices: 9", "NrOfSlices: 0", wrong("NrOfSlices", "0", "entries")},
                 {"NrOfSlices: 9", "NrOfSlices: 99999999999", wrong("NrOfSlices", "0", "entries")},
                 {"TR: 1500.5", "TR: fast", wrong("TR", "0")},
                 {"StimulationProtocol:", "Protocol:", protocol}};
    for (const auto& [before, after, message] : cases) {
        SCOPED_TRACE(after);
        const QString text = replaced(geText(), before, after);
        programEnd.statuses.clear();
        if (!message.isEmpty())
            messages.expect(MessageLevel::Warning, message);
        EXPECT_TRUE(readText(text, SettingsUse::Inspection));
        if (!message.isEmpty())
            messages.expect(MessageLevel::Critical, message);
        EXPECT_EQ(readText(text, SettingsUse::Run), message.isEmpty());
        EXPECT_EQ(programEnd.statuses.size(), message.isEmpty() ? 0U : 1U);
    }
}

TEST_F(SettingsFile, WhatNoFileMayHoldIsFatal) {
    write("file", "");
    const QString target = "ERROR: Target folder  \"" + dir() +
                           "file/out/\"  does not exist and could not be created!\n\nCheck \"" +
                           settings.settingsFilePath +
                           "\" file and/or create target folder;\nthen rerun Velo-Cortivo.";
    const struct {
        QString text;
        SettingsUse use;
        QString message;
    } cases[] = {{replaced(geText(), "NrOfVolumes: 50", "NrOfVolumes: 0"), SettingsUse::Run,
                  "ERROR: Problem reading \"NrOfVolumes\" value (0). Check respective entry in "
                  "settings file!"},
                 {fileText("XYZ", ""), SettingsUse::Inspection,
                  "ERROR: Data type \"XYZ\" not supported!\n\nCheck settings file: \"" +
                      settings.settingsFilePath + "\"."},
                 {replaced(geText(), "./out", "./file/out"), SettingsUse::Run, target}};
    for (const auto& [text, use, message] : cases) {
        programEnd.statuses.clear();
        messages.expect(MessageLevel::Critical, message);
        EXPECT_FALSE(readText(text, use));
        EXPECT_EQ(programEnd.statuses, std::vector<int>{1});
    }
}

TEST_F(SettingsFile, TheProtocolKeySaysWhichSourceIsUsed) {
    const struct {
        const char* key;
        QString RunSettings::*member;
    } sources[] = {{"TDatFile:", &RunSettings::TDatFile},
                   {"RealTimeProtocol", &RunSettings::RealTimeProtocol},
                   {"STIMULATIONPROTOCOL:", &RunSettings::StimulationProtocol}};
    for (const auto& [key, member] : sources) {
        ASSERT_TRUE(
            readText(replaced(geText(), "StimulationProtocol:", key), SettingsUse::Inspection));
        for (const auto& other : sources)
            EXPECT_EQ(settings.*other.member, other.member == member ? dir() + "a.prt" : QString());
    }
}

TEST_F(SettingsFile, WatchFolderMarksTakeTheNewestSeries) {
    for (const char* name : {"Ser0002", "Ser0010", "0003", "0012", "00100"})
        QDir(dir() + "in").mkdir(name);
    write("in/Ser0011", "a file is no series");
    const struct {
        const char* value;
        const char* result;
    } cases[] = {{"./in/Ser<N>", "in/Ser0010"}, {"./in/Ser<n>/", "in/Ser0010"},
                 {"./in/other<N>", "in/0012"},  {"./gone/Ser<N>", "gone/Ser0000"},
                 {"./gone/<n>", "gone/0000"},   {".\\in\\ser<M>", "in/ser<M>/"}};
    for (const auto& [value, result] : cases) {
        const QString text = replaced(geText(), "\"./in\"", QString("\"%1\"").arg(value));
        ASSERT_TRUE(readText(text, SettingsUse::Inspection));
        EXPECT_EQ(settings.WatchFolder.count('<'), 1) << "resolved for a run only";
        ASSERT_TRUE(readText(text, SettingsUse::Run));
        EXPECT_EQ(settings.WatchFolder, dir() + result);
    }
}

TEST_F(SettingsFile, AWatchFolderListNormallyGivesItsFirstName) {
    const QString text =
        replaced(geText(), "WatchFolder: \"./in\"", "WatchFolderList: \"./list.txt\"");
    messages.expect(MessageLevel::Critical,
                    "ERROR: Can not open watch folder list file.\nCheck VCO file.");
    EXPECT_FALSE(readText(text, SettingsUse::Inspection));

    const QString name = QString(18, 'a') + "\\b";
    const QString none = "ERROR: Can not find directories in watch folder list file.";
    const struct {
        QString list;
        QStringList folders; ///< empty: refused
        int count;
    } cases[] = {{"3\n" + name + " c d", {QString(18, 'a') + "/b/"}, 3},
                 {"3 ./x y z", {dir() + "/x/"}, 3},
                 {"2000000000 x", {"x/"}, 2000000000},
                 {"0 x y", {}, 0},
                 {"7", {}, 7}};
    for (const auto& [list, folders, count] : cases) {
        SCOPED_TRACE(list.toStdString());
        write("list.txt", list);
        if (folders.isEmpty())
            messages.expect(MessageLevel::Critical, none);
        EXPECT_EQ(readText(text, SettingsUse::Run), !folders.isEmpty());
        EXPECT_EQ(settings.watchFolderList, folders);
        EXPECT_EQ(settings.watchFolderCount, count);
        EXPECT_EQ(settings.WatchFolder, "");
    }
    write("list.txt", "1 x");
    ASSERT_TRUE(readText(text, SettingsUse::Inspection));
    EXPECT_TRUE(settings.watchFolderList.isEmpty());
    EXPECT_EQ(settings.WatchFolderListFile, dir() + "list.txt");
}

TEST_F(SettingsFile, DicomNamesTellPrefixVolumeAndWidth) {
    const struct {
        const char* name;
        const char* prefix;
        int volume;
        int width;
    } cases[] = {{"Subj-0007-0001.dcm", "Subj", 7, 4},
                 {"a-b-12-1.dcm", "a-b", 12, -1},
                 {"Subj-x-01.dcm", "Subj", 0, 2},
                 {"/data/run-1/S-3-12345.dcm", "S", 3, 5},
                 {"Subj-0001.dcm", "Subj", 9, 4},
                 {"image.dcm", "image", 9, -1},
                 {"--.dcm", "", 0, -1},
                 {"", "", 9, -1}};
    for (const auto& [name, prefix, volume, width] : cases) {
        SCOPED_TRACE(name);
        ASSERT_TRUE(readText(fileText("DICOM", dicomText(name)), SettingsUse::Run));
        EXPECT_EQ(settings.dicomFilePrefix, prefix);
        EXPECT_EQ(settings.DicomFirstVolumeNr, volume);
        EXPECT_EQ(settings.dicomImageNumberWidth, width);
        EXPECT_EQ(settings.documentFirstFileName,
                  QString(name).startsWith('/') ? QString(name) : dir() + "in/" + name);
        EXPECT_EQ(settings.FirstFileName, name);
    }
}

TEST_F(SettingsFile, QuotedTextsEndAtTheirLimitAndAtComments) {
    messages.expect(MessageLevel::Warning, "ERROR: Expected \"ParadigmHelpFile:\" token*");
    EXPECT_FALSE(readText(geText().replace("a run", QString(300, 'x')), SettingsUse::Inspection));
    EXPECT_EQ(settings.Title.size(), 256);
    messages.expect(MessageLevel::Warning, "ERROR: Expected \"ParadigmHelpFile:\" token*");
    EXPECT_FALSE(readText(geText().replace("a run", "a ;run"), SettingsUse::Inspection));
}

TEST_F(SettingsFile, TellsTheProjectOfAnotherFile) {
    write("a-1.vco", geText().replace("./out", "\\out").replace("study.fmr", "p"));
    EXPECT_EQ(resolveProjectPath("a-1", dir()), "/out/p");
    EXPECT_EQ(resolveProjectPath(dir() + "a-1.vco", "/else/"), "/out/p");
    write("b.vco", "TARGETFOLDER \"./out\" ProjectName: \"/x/p.fmr\"");
    EXPECT_EQ(resolveProjectPath("b", dir()), "/x/p.fmr");
    write("c.vco", "TargetFolder: \"./out\" ProjectName: \"p\"");
    EXPECT_EQ(resolveProjectPath("c", dir()), dir() + "out/p");
    write("d.vco", "TargetFolder: \"/out\" ProjectName: ");
    EXPECT_EQ(resolveProjectPath("d", dir()), "");
    messages.expect(MessageLevel::Warning, "ERROR: \"" + dir() + "gone.vco\" file not found!");
    EXPECT_EQ(resolveProjectPath("gone", dir()), "");
}
