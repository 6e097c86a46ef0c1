// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/loop/feedback_files.h"
#include "support/files.h"
#include "support/scripted_messages.h"

#include <QDir>
#include <QTemporaryDir>

TEST(FeedbackFiles, PicturesAndValuesOfEachVolume) {
    const QTemporaryDir parent;
    const QString folder = parent.filePath("new/feed %1");
    FeedbackFiles files;
    files.begin(folder, "run");
    QImage picture(30, 20, QImage::Format_RGB32);
    picture.fill(qRgb(1, 2, 3));
    picture.setPixel(29, 0, qRgb(255, 0, 7));
    files.writePicture(picture, 0);
    files.writeValues(1, 0.0f, -99, 11);
    files.writeValues(2, -1234.5678f, 7, 11);
    EXPECT_EQ(files.fault(), "");
    // And nothing that was written aside.
    EXPECT_EQ(QDir(folder).entryList(QDir::Files | QDir::Hidden),
              QStringList({"run-1.png", "run-s1-12.bpg", "run-s2-12.bpg"}));
    const QImage read(folder + "/run-1.png", "PNG");
    EXPECT_EQ(read.convertToFormat(QImage::Format_RGB32), picture);
    EXPECT_EQ(contentOf(folder + "/run-s1-12.bpg"), "0 -99\n");
    EXPECT_EQ(contentOf(folder + "/run-s2-12.bpg"), "-1234.57 7\n");
}

TEST(FeedbackFiles, TheFirstTrialReplacesTheFileAndTheOthersAreAppended) {
    const QTemporaryDir folder;
    const QString path = folder.filePath("trials.txt");
    writeFile(path, "of an earlier run\n");
    FeedbackFiles files;
    files.begin(folder.path(), "run");
    EXPECT_TRUE(files.appendTrial("trials.txt", 3, 0.5));
    EXPECT_EQ(contentOf(path), "of an earlier run\n" + delayedFeedbackLine(4, 0.5));
    EXPECT_TRUE(files.appendTrial("trials.txt", 0, -2.0));
    EXPECT_EQ(contentOf(path), delayedFeedbackLine(1, -2.0));
    EXPECT_TRUE(QFile::remove(path) && files.appendTrial("trials.txt", 1, 1.0));
    EXPECT_EQ(contentOf(path), delayedFeedbackLine(2, 1.0));
    ASSERT_TRUE(QFile::resize(path, 1 << 20) && files.appendTrial("trials.txt", 1, 1.0));
    ScriptedMessages messages; // what is larger than a mebibyte is no file of trials
    messages.expectWarning("ERROR: Can not open feedback file: \"" + path + "\" !");
    EXPECT_FALSE(files.appendTrial("trials.txt", 2, 1.0));
}

TEST(FeedbackFiles, AFolderThatCanNotBeIsAFaultAndNothingElse) {
    const QTemporaryDir parent;
    const QString folder = parent.filePath("folder");
    writeFile(folder, "a file in its place");
    ScriptedMessages messages;
    FeedbackFiles files;
    const auto faultOf = [&](const char* name) {
        return QString("Not written: \"%1/%2\"").arg(folder, name);
    };
    files.begin(folder, "run");
    files.writePicture(QImage(3, 3, QImage::Format_RGB32), 4);
    EXPECT_EQ(files.fault(), faultOf("run-5.png"));
    files.writeValues(1, 0.5f, 3, 4);
    EXPECT_EQ(files.fault(), faultOf("run-s1-5.bpg"));
    for (const int trial : {0, 1}) {
        messages.expectWarning("ERROR: Can not open feedback file: \"" + folder + "/trials\" !");
        files.begin(folder, "run");
        EXPECT_EQ(files.fault(), "");
        EXPECT_FALSE(files.appendTrial("trials", trial, 1.0));
        EXPECT_EQ(files.fault(), faultOf("trials"));
    }
    EXPECT_EQ(messages.shownModeless().size(), 2);
    ASSERT_TRUE(QFile::remove(folder));
    files.writeValues(1, 0.5f, 3, 5);
    EXPECT_EQ(files.fault(), "");
    files.writePicture(QImage(), 5);
    EXPECT_NE(files.fault(), "");
}
