// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/settings/master_file.h"

#include "support/files.h"
#include "support/scripted_messages.h"

#include <QTemporaryDir>

constexpr char versionTwo[] = "FileVersion: 2 VCOSettingsDirectory: \"/data/x\" "
                              "VCOSettingsFile: \"run-3.vco\" AutoAdvanceRun: 1 AutoStartVCO: 0 "
                              "WindowSize: 1 HorizontalWindowPosition: -7 "
                              "VerticalWindowPosition: Automatic";

TEST(MasterFile, FirstStartWritesOneThatPointsAtTheSample) {
    const QTemporaryDir folder;
    MasterFile master;
    EXPECT_EQ(readMasterFile(folder.path() + "/", "/home/me/VCOData/", master),
              MasterFileResult::Created);
    EXPECT_EQ(contentOf(folder.filePath("MasterVCO")).toStdString(),
              "\nFileVersion:               2\n\n"
              "VCOSettingsDirectory:      \"/home/me/VCOData/VCO_FacesHouses/\"\n"
              "VCOSettingsFile:           \"VCO_FacesHouses-1.vco\"\n\n"
              "AutoAdvanceRun:            0\n"
              "AutoStartVCO:              0\n\n"
              "WindowSize:                2\n\n"
              "HorizontalWindowPosition:  Centered\n"
              "VerticalWindowPosition:    Centered\n");
}

TEST(MasterFile, ReadsWhatItWrites) {
    const QTemporaryDir folder;
    const MasterFile written{"/a b/", "c-1.vco", true, true, 1, false, true, -12, 0, true};
    ASSERT_TRUE(writeMasterFile(folder.path() + "/", written));
    MasterFile read;
    ASSERT_EQ(readMasterFile(folder.path() + "/", {}, read), MasterFileResult::Read);
    EXPECT_EQ(masterFileText(read), masterFileText(written));
    EXPECT_TRUE(read.keepsJournals);
    ScriptedMessages messages;
    for (const QString& unreadable : {QString("/a\"b/"), QString("/a  b/"), QString("/a ;b/")}) {
        messages.expectCritical("ERROR: Can not update \"MasterVCO\" file !");
        EXPECT_FALSE(writeMasterFile(folder.path() + "/", {unreadable, "c-1.vco"}));
    }
}

TEST(MasterFile, TakesOlderForms) {
    MasterFile master;
    ASSERT_TRUE(parseMasterFile(versionTwo, "m", master));
    EXPECT_EQ(master.settingsDirectory, "/data/x/");
    EXPECT_EQ(master.windowX, -7);
    EXPECT_TRUE(master.windowCentredY);
    EXPECT_FALSE(master.keepsJournals);
    const QString versionOne = QString(versionTwo)
                                   .replace("FileVersion: 2", "fileversion 1")
                                   .replace("VCOSettingsDirectory", "VCOWatchDirectory")
                                   .remove("WindowSize: 1 ");
    ASSERT_TRUE(parseMasterFile(versionOne, "m", master));
    EXPECT_EQ(master.windowSize, 2);
}

TEST(MasterFile, BrokenFilesEndTheProgram) {
    const QString whole = versionTwo;
    const auto changed = [&](const char* before, const QString& after) {
        return QString(whole).replace(before, after);
    };
    for (const QString& broken :
         {QString(), whole + " KeepRunJournals:", changed("AutoStartVCO", "AutoStart"),
          changed("AutoAdvanceRun: 1", "AutoAdvanceRun: yes"), changed("x\"", "x"),
          whole.left(whole.indexOf("AutoAdvanceRun")), changed("/data/x", QString(5000, 'x'))}) {
        ScriptedMessages messages;
        RecordedProgramEnd end;
        messages.expectCritical("ERROR: *");
        MasterFile master;
        EXPECT_FALSE(parseMasterFile(broken, "m", master)) << broken.toStdString();
        EXPECT_EQ(end.statuses, std::vector<int>{1});
        EXPECT_EQ(master.settingsFileName, QString());
    }
}
