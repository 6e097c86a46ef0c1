// Journals that are whole, cut, damaged or hostile.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/byte_writer.h"
#include "journal_content.h"
#include "run/journal/journal_framing.h"
#include "run/journal/journal_writer.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace {

// Made with Python's struct and zlib.crc32: (7, "volume") and (0x01020304, "").
const QByteArray knownJournal =
    QByteArray::fromHex("8956434a0d0a1a0a0100000000000000"
                        "d5524543070000000600000000000000e2e2af76766f6c756d65"
                        "d55245430403020100000000000000006f5fbff2");
const std::vector<Record> knownRecords{{7, "volume"}, {0x01020304, ""}};

std::span<const uint8_t> bytesOf(const QByteArray& bytes) {
    return ::bytesOf(std::string_view(bytes.constData(), size_t(bytes.size())));
}

ReadBack readBytes(const QByteArray& bytes) {
    // With a buffer of exactly this size the sanitizer catches a read beyond its end.
    const std::vector<uint8_t> exact(bytes.begin(), bytes.end());
    return readBack(std::span<const uint8_t>(exact));
}

// Ends of the head and of each record.
constexpr std::array<qsizetype, 3> knownEnds{16, 42, 62};

ptrdiff_t wholeRecordsIn(qsizetype count) {
    return std::ranges::count_if(knownEnds, [=](qsizetype end) { return end <= count; }) - 1;
}

std::vector<Record> firstRecords(ptrdiff_t count) {
    return {knownRecords.begin(), knownRecords.begin() + std::max(count, ptrdiff_t(0))};
}

} // namespace

TEST(JournalFormat, WriterAndReaderAgreeWithKnownBytes) {
    const QTemporaryDir folder;
    const QString path = folder.filePath("run.journal");
    {
        JournalWriter writer(createJournalFile(path));
        EXPECT_TRUE(writer.add(7, {::bytesOf("vol"), {}, ::bytesOf("ume")}));
        EXPECT_TRUE(writer.add(0x01020304, {}));
    }
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll().toHex(), knownJournal.toHex());
    const ReadBack read = readBack(path);
    EXPECT_EQ(read.records, knownRecords);
    EXPECT_EQ(read.result.end, JournalEnd::Whole);
    EXPECT_EQ(read.result.nrOfRecords, 2);
    EXPECT_EQ(read.result.goodBytes, knownEnds.back());
    EXPECT_EQ(read.result.fileBytes, knownEnds.back());
}

TEST(JournalScan, ACutAtAnyByteLeavesTheRecordsBeforeIt) {
    for (qsizetype count = 0; count <= knownJournal.size(); ++count) {
        SCOPED_TRACE(count);
        const ReadBack read = readBytes(knownJournal.first(count));
        const ptrdiff_t whole = wholeRecordsIn(count);
        EXPECT_EQ(read.records, firstRecords(whole));
        const qsizetype good = whole < 0 ? 0 : knownEnds[size_t(whole)];
        EXPECT_EQ(read.result.end,
                  good == count && good > 0 ? JournalEnd::Whole : JournalEnd::CutOff);
        EXPECT_EQ(read.result.goodBytes, good);
        EXPECT_EQ(read.result.fileBytes, count);
    }
}

TEST(JournalScan, AnyFlippedBitLeavesTheRecordsBeforeIt) {
    constexpr qsizetype reserved = 12; // the last bytes of the head mean nothing
    for (qsizetype bit = 0; bit < knownJournal.size() * 8; ++bit) {
        SCOPED_TRACE(bit);
        const qsizetype position = bit / 8;
        QByteArray bytes = knownJournal;
        bytes[position] = char(bytes[position] ^ (1 << bit % 8));
        const ReadBack read = readBytes(bytes);
        if (position >= reserved && position < knownEnds[0]) {
            EXPECT_EQ(read.records, knownRecords);
            continue;
        }
        EXPECT_EQ(read.records, firstRecords(wholeRecordsIn(position)));
        // A record that seems longer than the file looks like one that was cut off.
        if (position < reserved)
            EXPECT_EQ(read.result.end, JournalEnd::NotAJournal);
        else
            EXPECT_TRUE(read.result.end == JournalEnd::Damaged ||
                        read.result.end == JournalEnd::CutOff);
    }
}

TEST(JournalScan, ACopyAsTextIsNoJournal) {
    const auto replaced = [](const char* from, const char* to) {
        return QByteArray(knownJournal).replace(from, to);
    };
    for (const QByteArray& bytes :
         {replaced("\r\n", "\n"), replaced("\n", "\r\n"), replaced("\n", "\r"),
          replaced("\r\n", "\r"), replaced("\x89", "\x09"), QByteArray("no journal")})
        EXPECT_EQ(readBytes(bytes).result.end, JournalEnd::NotAJournal) << bytes.toHex().data();
}

// A length is compared with the rest of the file before memory is asked for.
TEST(JournalScan, AHostileLengthIsARecordThatWasCutOff) {
    const uint64_t rest = 5;
    for (const uint64_t length :
         {rest + 1, uint64_t(1) << 32, uint64_t(1) << 40, uint64_t(INT64_MAX),
          uint64_t(INT64_MAX) + 1, UINT64_MAX - 20, UINT64_MAX}) {
        SCOPED_TRACE(length);
        const JournalRecordHeaderBytes header = encodedRecordHeader({1, length, 0});
        const QByteArray bytes =
            knownJournal +
            QByteArray::fromRawData(reinterpret_cast<const char*>(header.data()),
                                    qsizetype(header.size())) +
            QByteArray(qsizetype(rest), 'x');
        const ReadBack read = readBytes(bytes);
        EXPECT_EQ(read.records, knownRecords);
        EXPECT_EQ(read.result.end, JournalEnd::CutOff);
        EXPECT_EQ(read.result.goodBytes, knownJournal.size());
    }
}

// The file is as large as it says, since its blocks exist only when they are written.
TEST(JournalScan, ARecordWithoutMemoryForItEndsTheScan) {
    const QTemporaryDir folder;
    QFile file(folder.filePath("run.journal"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(knownJournal);
    const uint64_t length = uint64_t(1) << 42;
    const JournalRecordHeaderBytes header = encodedRecordHeader({1, length, 0});
    file.write(reinterpret_cast<const char*>(header.data()), qint64(header.size()));
    if (!file.resize(knownJournal.size() + qint64(header.size() + length)))
        GTEST_SKIP() << "no file of this size here";
    file.close();
    const ReadBack read = readBack(file.fileName());
    EXPECT_EQ(read.records, knownRecords);
    EXPECT_EQ(read.result.end, JournalEnd::Unreadable);
}

TEST(JournalScan, OnlyRegularFilesAreRead) {
    const QTemporaryDir folder;
    const QString pipe = folder.filePath("pipe");
    ASSERT_EQ(mkfifo(pipe.toUtf8().constData(), 0600), 0);
    for (const QString& path : {pipe, folder.path(), folder.filePath("none"), QString("/dev/zero")})
        EXPECT_EQ(readBack(path).result.end, JournalEnd::Unreadable) << path.toStdString();
}

TEST(JournalScan, TheTakerMayStopIt) {
    int calls = 0;
    const JournalScanResult result = scanJournal(bytesOf(knownJournal), [&](const JournalRecord&) {
        ++calls;
        return false;
    });
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(result.end, JournalEnd::Whole);
    EXPECT_EQ(result.goodBytes, knownEnds[1]);
}

// The payload's memory is used again by shorter records.
TEST(JournalCursor, EachPayloadHasItsOwnLength) {
    const std::vector<Record> records{
        {1, std::string(5000, 'a')}, {2, "b"}, {3, std::string(6000, 'c')}};
    const QTemporaryDir folder;
    const QString path = folder.filePath("run.journal");
    {
        JournalWriter writer(createJournalFile(path));
        for (const auto& [kind, payload] : records)
            EXPECT_TRUE(writer.add(kind, {::bytesOf(payload)}));
    }
    EXPECT_EQ(readBack(path).records, records);
}

TEST(JournalCursor, SkimsTheBeginningsOfPayloadsAndReadsOn) {
    QByteArray bytes = knownJournal;
    bytes[knownEnds[1] - 1] = '?'; // damage that nobody looks at
    const auto skimmed = [](JournalCursor& cursor, size_t most) {
        JournalRecord record;
        return cursor.skim(record, most) ? std::string(record.payload.begin(), record.payload.end())
                                         : "none";
    };
    const QTemporaryDir folder;
    QFile file(folder.filePath("run.journal"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
    file.close();
    JournalCursor inFile(file.fileName());
    JournalCursor inMemory(bytesOf(bytes));
    for (JournalCursor* cursor : {&inFile, &inMemory}) {
        EXPECT_EQ(skimmed(*cursor, 3), "vol");
        EXPECT_EQ(cursor->goodBytes(), knownEnds[1]);
        JournalRecord record;
        EXPECT_TRUE(cursor->next(record));
        EXPECT_EQ(record.kind, knownRecords[1].first);
        EXPECT_EQ(skimmed(*cursor, 3), "none");
        EXPECT_EQ(cursor->end(), JournalEnd::Whole);
    }
    const QByteArray beginning = bytes.first(knownEnds[1] - 1);
    JournalCursor cut(bytesOf(beginning));
    EXPECT_EQ(skimmed(cut, 3), "none");
    EXPECT_EQ(cut.end(), JournalEnd::CutOff);
}
