// Journals in real files.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "journal_content.h"
#include "run/journal/journal_writer.h"

#include <QFile>
#include <QFileInfo>
#include <QScopeGuard>
#include <QTemporaryDir>
#include <csignal>
#include <gtest/gtest.h>
#include <sys/resource.h>

namespace {

const std::vector<Record> fiveRecords{
    {1, "settings"}, {2, "first"}, {2, "second"}, {3, ""}, {2, "third"}};

void addAll(JournalWriter& writer, std::span<const Record> records) {
    for (const auto& [kind, payload] : records)
        EXPECT_TRUE(writer.add(kind, {bytesOf(payload)}));
    EXPECT_TRUE(writer.finish());
}

QByteArray contentOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

TEST(JournalFile, IsContinuedAfterItsLastWholeRecord) {
    const QTemporaryDir folder;
    const QString path = folder.filePath("run.journal");
    {
        JournalWriter writer(createJournalFile(path));
        addAll(writer, std::span(fiveRecords).first(3));
    }
    const qint64 whole = readBack(path).result.fileBytes;
    for (const qint64 torn : {qint64(0), qint64(1)}) {
        QFile::resize(path, whole - torn);
        const JournalScanResult before = readBack(path).result;
        std::unique_ptr<JournalOutput> output = continueJournalFile(path, before.goodBytes);
        EXPECT_EQ(QFileInfo(path).size(), before.goodBytes);
        JournalWriter writer(std::move(output), false);
        addAll(writer, std::span(fiveRecords).subspan(size_t(before.nrOfRecords)));
        const ReadBack read = readBack(path);
        EXPECT_EQ(read.result.end, JournalEnd::Whole);
        EXPECT_EQ(read.records, fiveRecords);
    }
}

TEST(JournalFile, WhatExistsIsNeverReplacedAndWhatDoesNotIsNotContinued) {
    const QTemporaryDir folder;
    const QString path = folder.filePath("run.journal");
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("12345");
    file.close();
    const QString link = folder.filePath("link");
    ASSERT_TRUE(QFile::link(folder.filePath("target"), link));
    for (const QString& taken : {path, folder.path(), link, folder.filePath("none/run.journal")})
        EXPECT_EQ(createJournalFile(taken), nullptr) << taken.toStdString();
    EXPECT_FALSE(QFile::exists(folder.filePath("target")));
    EXPECT_EQ(continueJournalFile(path, 6), nullptr);
    EXPECT_EQ(continueJournalFile(path, -1), nullptr);
    EXPECT_EQ(contentOf(path), "12345");
    for (const QString& missing : {folder.path(), folder.filePath("none"), QString("/dev/null")})
        EXPECT_EQ(continueJournalFile(missing, 0), nullptr) << missing.toStdString();
    EXPECT_FALSE(QFile::exists(folder.filePath("none")));
}

TEST(JournalFile, OneWriterAtATimeHasIt) {
    const QTemporaryDir folder;
    const QString path = folder.filePath("run.journal");
    EXPECT_FALSE(journalIsInUse(path)) << "there is none";
    auto written = createJournalFile(path);
    for (const qint64 keep : {qint64(0), qint64(3)}) {
        EXPECT_TRUE(written->write(bytesOf("12345")));
        EXPECT_TRUE(journalIsInUse(path));
        EXPECT_EQ(continueJournalFile(path, 1), nullptr);
        EXPECT_EQ(QFileInfo(path).size(), keep + 5) << "the writer's content stays";
        written.reset();
        EXPECT_FALSE(journalIsInUse(path));
        written = continueJournalFile(path, 3);
        ASSERT_TRUE(written);
    }
}

// Like a full disk: a part of the last record fits.
TEST(JournalFile, AWriteBeyondTheLimitLeavesWhatFits) {
    constexpr rlim_t limitBytes = 1000;
    const QTemporaryDir folder;
    const QString path = folder.filePath("run.journal");
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
    const auto restored = qScopeGuard([&] {
        setrlimit(RLIMIT_FSIZE, &before);
        std::signal(SIGXFSZ, handler);
    });
    const rlimit small{limitBytes, before.rlim_max};
    const std::string payload(100, 'v');
    size_t nrFinished = 0;
    {
        JournalWriter writer(createJournalFile(path));
        ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
        while (writer.add(1, {bytesOf(payload)}) && writer.finish())
            ++nrFinished;
        EXPECT_EQ(writer.fault(), JournalFault::WriteFailed);
    }
    const ReadBack read = readBack(path);
    EXPECT_EQ(read.result.end, JournalEnd::CutOff);
    EXPECT_EQ(read.result.fileBytes, qint64(limitBytes));
    EXPECT_EQ(nrFinished, 8U);
    EXPECT_EQ(read.records, std::vector<Record>(nrFinished, {1, payload}));
}
