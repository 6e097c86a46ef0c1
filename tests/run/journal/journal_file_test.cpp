// Journals in real files.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "journal_content.h"

#include <QFile>
#include <QFileInfo>

namespace {

class JournalFile : public testing::Test {
protected:
    const QTemporaryDir folder_;
    const QString path_ = folder_.filePath("run.journal");
};

} // namespace

TEST_F(JournalFile, WhatExistsIsNeverReplacedAndWhatDoesNotIsNotContinued) {
    QFile file(path_);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite) && file.write("12345") == 5 && file.flush());
    const QString link = folder_.filePath("link");
    const QString none = folder_.filePath("none");
    ASSERT_TRUE(QFile::link(folder_.filePath("target"), link));
    for (const QString& taken : {path_, folder_.path(), link, none + "/run.journal"})
        EXPECT_EQ(createJournalFile(taken), nullptr) << taken.toStdString();
    EXPECT_FALSE(QFile::exists(folder_.filePath("target")));
    for (const int kept : {6, -1})
        EXPECT_EQ(continueJournalFile(path_, kept), nullptr);
    EXPECT_TRUE(file.seek(0) && file.readAll() == "12345");
    for (const QString& missing : {folder_.path(), none, QString("/dev/null")})
        EXPECT_EQ(continueJournalFile(missing, 0), nullptr) << missing.toStdString();
    EXPECT_FALSE(QFile::exists(none));
}

TEST_F(JournalFile, OneWriterAtATimeHasItUntilItIsRemoved) {
    EXPECT_FALSE(journalIsInUse(path_)) << "there is none";
    auto written = createJournalFile(path_);
    for (const qint64 keep : {0, 3}) {
        EXPECT_TRUE(written->write(bytesOf("12345")) && written->forceOut());
        EXPECT_TRUE(journalIsInUse(path_));
        EXPECT_EQ(continueJournalFile(path_, 1), nullptr);
        EXPECT_EQ(QFileInfo(path_).size(), keep + 5) << "the writer's content stays";
        written.reset();
        EXPECT_FALSE(journalIsInUse(path_));
        written = continueJournalFile(path_, 3);
        ASSERT_TRUE(written);
    }
    QFile::remove(path_);
    EXPECT_FALSE(written->forceOut());
}
