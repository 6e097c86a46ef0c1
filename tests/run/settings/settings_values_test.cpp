// SPDX-License-Identifier: GPL-3.0-or-later
#include "settings_fixture.h"

TEST_F(SettingsFile, RefusesValuesThatNoRunCanWorkWith) {
    const QString matrix = "ERROR: Problem reading MatrixSizeX / MatrixSizeY values. Check "
                           "respective entries in settings file!";
    const QString problem = "ERROR: Problem reading \"%1\" value (0). Check respective %2 in "
                            "settings file!";
    const struct {
        const char* before;
        const char* after;
        QString message; ///< empty: accepted
        bool inspected = true;
    } cases[] = {
        {"MatrixSizeX: 64", "MatrixSizeX: 0", matrix},
        {"MatrixSizeX: 64", "MatrixSizeX: 4097", matrix},
        {"MatrixSizeY: 32", "MatrixSizeY: 0", ""},
        {"Skip: 3", "Skip: 50",
         "ERROR: \"NrOfVolumesToSkip\" value (50) must be smaller than \"NrOfVolumes\" value (50). "
         "Check respective entries in settings file!"},
        {"NrOfSlices: 9", "NrOfSlices: 99999999999", problem.arg("NrOfSlices", "entries")},
        {"TR: 1500.5", "TR: fast", problem.arg("TR", "entry")},
        {"StimulationProtocol:", "Protocol:",
         "ERROR: Expected \"StimulationProtocol:\" or \"RealTimeProtocol:\" or \"TDatFile:\" token "
         "but found \"Protocol:\".*"},
        {"./fb\"", "./fb\" MotionCorrectionMethod: 3",
         QString(problem).replace("(0)", "(3)").arg("MotionCorrectionMethod", "entry")},
        {"./fb\"", "./fb\" NrOfThreads: -1",
         QString(problem).replace("(0)", "(-1)").arg("NrOfThreads", "entry")},
        {"NrOfVolumes: 50", "NrOfVolumes: 0", problem.arg("NrOfVolumes", "entry"), false},
        {"./out", "./run-1.vco/out",
         "ERROR: Target folder  \"" + dir() +
             "run-1.vco/out/\"  does not exist and could not be created!\n\nCheck \"" +
             settings.settingsFilePath +
             "\" file and/or create target folder;\nthen rerun Velo-Cortivo.",
         false}};
    for (const auto& [before, after, message, inspected] : cases) {
        SCOPED_TRACE(after);
        const QString text = replaced(geText(), before, after);
        programEnd.statuses.clear();
        if (inspected && !message.isEmpty())
            messages.expectWarning(message);
        EXPECT_TRUE(!inspected || readText(text, SettingsUse::Inspection));
        if (!message.isEmpty())
            messages.expectCritical(message);
        EXPECT_EQ(readText(text, SettingsUse::Run), message.isEmpty());
        EXPECT_EQ(programEnd.statuses.size(), message.isEmpty() ? 0U : 1U);
    }
    messages.expectCritical("ERROR: Data type \"XYZ\" not supported!\n\nCheck settings file: \"" +
                            settings.settingsFilePath + "\".");
    EXPECT_FALSE(readText(replaced(geText(), "GE_STANFORD", "XYZ"), SettingsUse::Inspection));
}

TEST_F(SettingsFile, WatchFolderMarksTakeTheNewestSeries) {
    for (const char* name : {"Ser0002", "Ser0010", "0003", "0012", "00100"})
        QDir(dir() + "in").mkdir(name);
    write("in/Ser0011", "a file is no series");
    const std::pair<QString, QString> cases[] = {{"./in/Ser<n>/", "in/Ser0010"},
                                                 {"./in/other<N>", "in/0012"},
                                                 {"./gone/Ser<N>", "gone/Ser0000"},
                                                 {".\\in\\ser<M>", "in/ser<M>/"}};
    for (const auto& [value, result] : cases) {
        const QString text = replaced(geText(), "\"./in\"", '"' + value + '"');
        ASSERT_TRUE(readText(text, SettingsUse::Inspection));
        EXPECT_EQ(settings.WatchFolder.count('<'), 1) << "resolved for a run only";
        ASSERT_TRUE(readText(text, SettingsUse::Run));
        EXPECT_EQ(settings.WatchFolder, dir() + result);
    }
}

TEST_F(SettingsFile, AWatchFolderListNormallyGivesItsFirstName) {
    const QString text =
        replaced(geText(), "WatchFolder: \"./in\"", "WatchFolderList: \"./list.txt\"");
    messages.expectCritical("ERROR: Can not open watch folder list file.\nCheck VCO file.");
    EXPECT_FALSE(readText(text, SettingsUse::Inspection));

    const QString name = QString(18, 'a') + "\\b";
    // Without folders: refused.
    const std::tuple<QString, QStringList, int> cases[] = {
        {"3\n" + name + " c d", {QString(18, 'a') + "/b/"}, 3},
        {"3 ./x y z", {dir() + "/x/"}, 3},
        {"2000000000 x", {"x/"}, 2000000000},
        {"0 x y", {}, 0},
        {"7", {}, 7}};
    for (const auto& [list, folders, count] : cases) {
        SCOPED_TRACE(list.toStdString());
        write("list.txt", list);
        if (folders.isEmpty())
            messages.expectCritical("ERROR: Can not find directories in watch folder list file.");
        EXPECT_EQ(readText(text, SettingsUse::Run), !folders.isEmpty());
        EXPECT_EQ(settings.watchFolderList, folders);
        EXPECT_EQ(settings.watchFolderCount, count);
        EXPECT_EQ(settings.WatchFolder, "");
    }
}

TEST_F(SettingsFile, DicomNamesTellPrefixVolumeAndWidth) {
    const QString text = operatorText("inplanes")
                             .replace("Delimiter: \"_\"", "Delimiter: \"-\"")
                             .replace("FirstVolumeNr: 1", "FirstVolumeNr: 9");
    const std::tuple<QString, QString, int, int> cases[] = {
        {"a-b-12-1.dcm", "a-b", 12, -1},
        {"Subj-x-01.dcm", "Subj", 0, 2},
        {"/data/run-1/S-3-12345.dcm", "S", 3, 5},
        {"Subj-0001.dcm", "Subj", 9, 4},
        {"image.dcm", "image", 9, -1},
        {"--.dcm", "", 0, -1},
        {"", "", 9, -1}};
    for (const auto& [name, prefix, volume, width] : cases) {
        SCOPED_TRACE(name.toStdString());
        ASSERT_TRUE(readText(replaced(text, "001_000004_000001.dcm", name), SettingsUse::Run));
        EXPECT_EQ(settings.dicomFilePrefix, prefix);
        EXPECT_EQ(settings.DicomFirstVolumeNr, volume);
        EXPECT_EQ(settings.dicomImageNumberWidth, width);
        EXPECT_EQ(settings.documentFirstFileName,
                  name.startsWith('/') ? name : dir() + "in/" + name);
    }
}

TEST_F(SettingsFile, TellsTheProjectOfAnotherFile) {
    write("a-1.vco", geText().replace("./out", "\\out").replace("study.fmr", "p"));
    EXPECT_EQ(resolveProjectPath("a-1", dir()), "/out/p");
    write("b.vco", "TARGETFOLDER \"./out\" ProjectName: \"/x/p.fmr\"");
    EXPECT_EQ(resolveProjectPath("b", dir()), "/x/p.fmr");
    write("c.vco", "TargetFolder: \"./out\" ProjectName: \"p\"");
    EXPECT_EQ(resolveProjectPath(dir() + "c.vco", "/else/"), dir() + "out/p");
    messages.expectWarning("ERROR: \"" + dir() + "gone.vco\" file not found!");
    EXPECT_EQ(resolveProjectPath("gone", dir()), "");
}
