// Journals that are whole, cut, damaged or hostile.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/byte_views.h"
#include "journal_content.h"
#include "run/journal/journal_framing.h"
#include "support/files.h"

#include <sys/stat.h>

namespace {

// Made with Python's struct and zlib.crc32: (7, "volume") and (0x01020304, "").
const QByteArray knownJournal =
    QByteArray::fromHex("8956434a0d0a1a0a0100000000000000"
                        "d5524543070000000600000000000000e2e2af76766f6c756d65"
                        "d55245430403020100000000000000006f5fbff2");
const std::vector<Record> knownRecords{{7, "volume"}, {0x01020304, ""}};

ReadBack readBytes(const QByteArray& bytes) {
    // With a buffer of exactly this size the sanitizer catches a read beyond its end.
    const std::vector<uint8_t> exact(bytes.begin(), bytes.end());
    return readBack(std::span<const uint8_t>(exact));
}

/// The known journal and the header of a further record.
QByteArray withHeader(uint64_t length) {
    const JournalRecordHeaderBytes header = encodedRecordHeader({1, length, 0});
    return knownJournal +
           QByteArray(reinterpret_cast<const char*>(header.data()), qsizetype(header.size()));
}

// Ends of the head and of each record.
constexpr std::array<qsizetype, 3> knownEnds{16, 42, 62};

/// What is whole of the first bytes of the known journal.
void expectBeginning(const ReadBack& read, qsizetype count) {
    const auto next = std::ranges::upper_bound(knownEnds, count);
    const size_t nrWhole = size_t(std::max(next - knownEnds.begin(), ptrdiff_t(1)) - 1);
    EXPECT_EQ(read.records,
              std::vector<Record>(knownRecords.begin(), knownRecords.begin() + nrWhole));
    EXPECT_EQ(read.result.nrOfRecords, int(nrWhole));
    EXPECT_EQ(read.result.goodBytes, next == knownEnds.begin() ? 0 : *(next - 1));
}

class JournalScan : public testing::Test {
protected:
    const QTemporaryDir folder_;
    const QString path_ = folder_.filePath("run.journal");
};

} // namespace

TEST_F(JournalScan, WriterAndReaderAgreeWithKnownBytes) {
    {
        JournalWriter writer(createJournalFile(path_));
        EXPECT_TRUE(writer.add(
            7, {::bytesOf(std::string_view("vol")), {}, ::bytesOf(std::string_view("ume"))}));
        EXPECT_TRUE(writer.add(0x01020304, {}));
    }
    EXPECT_EQ(contentOf(path_).toHex(), knownJournal.toHex());
    const ReadBack read = readBack(path_);
    expectBeginning(read, knownEnds.back());
    EXPECT_EQ(read.result.end, JournalEnd::Whole);
    EXPECT_EQ(read.result.fileBytes, knownEnds.back());
}

TEST_F(JournalScan, ACutAtAnyByteLeavesTheRecordsBeforeIt) {
    for (qsizetype count = 0; count <= knownJournal.size(); ++count) {
        SCOPED_TRACE(count);
        const ReadBack read = readBytes(knownJournal.first(count));
        expectBeginning(read, count);
        const bool isWhole = std::ranges::find(knownEnds, count) != knownEnds.end();
        EXPECT_EQ(read.result.end, isWhole ? JournalEnd::Whole : JournalEnd::CutOff);
        EXPECT_EQ(read.result.fileBytes, count);
    }
}

TEST_F(JournalScan, AnyFlippedBitLeavesTheRecordsBeforeIt) {
    constexpr qsizetype reserved = 12; // the last bytes of the head mean nothing
    for (qsizetype bit = 0; bit < knownJournal.size() * 8; ++bit) {
        SCOPED_TRACE(bit);
        const qsizetype position = bit / 8;
        const bool meansNothing = position >= reserved && position < knownEnds[0];
        QByteArray bytes = knownJournal;
        bytes[position] = char(bytes[position] ^ (1 << bit % 8));
        const ReadBack read = readBytes(bytes);
        expectBeginning(read, meansNothing ? knownEnds.back() : position);
        EXPECT_EQ(read.result.end == JournalEnd::NotAJournal, position < reserved);
        EXPECT_EQ(read.result.end == JournalEnd::Whole, meansNothing);
    }
}

// A length is compared with the rest of the file before memory is asked for.
TEST_F(JournalScan, AHostileLengthIsARecordThatWasCutOff) {
    const uint64_t rest = 5;
    for (const uint64_t length : {rest + 1, uint64_t(1) << 32, uint64_t(INT64_MAX),
                                  uint64_t(INT64_MAX) + 1, UINT64_MAX - 20, UINT64_MAX}) {
        SCOPED_TRACE(length);
        const ReadBack read = readBytes(withHeader(length) + QByteArray(qsizetype(rest), 'x'));
        expectBeginning(read, knownEnds.back());
        EXPECT_EQ(read.result.end, JournalEnd::CutOff);
    }
}

// The file is as large as it says, since its blocks exist only when they are written.
TEST_F(JournalScan, ARecordWithoutMemoryForItEndsTheScan) {
    constexpr qint64 length = qint64(1) << 42;
    const QByteArray beginning = withHeader(length);
    writeFile(path_, beginning);
    if (!QFile::resize(path_, beginning.size() + length))
        GTEST_SKIP() << "no file of this size here";
    const ReadBack read = readBack(path_);
    expectBeginning(read, knownEnds.back());
    EXPECT_EQ(read.result.end, JournalEnd::Unreadable);
}

TEST_F(JournalScan, OnlyRegularFilesAreRead) {
    const QString pipe = folder_.filePath("pipe");
    ASSERT_EQ(mkfifo(pipe.toUtf8().constData(), 0600), 0);
    for (const QString& path : {pipe, folder_.path(), path_, QString("/dev/zero")})
        EXPECT_EQ(readBack(path).result.end, JournalEnd::Unreadable) << path.toStdString();
}

TEST_F(JournalScan, SkimsTheBeginningsOfPayloadsAndReadsOn) {
    QByteArray bytes = knownJournal;
    bytes[knownEnds[1] - 1] = '?'; // damage that nobody looks at
    JournalRecord record;
    writeFile(path_, bytes);
    JournalCursor cursor(path_);
    ASSERT_TRUE(cursor.skim(record, 3));
    EXPECT_EQ(std::string(record.payload.begin(), record.payload.end()), "vol");
    EXPECT_EQ(cursor.goodBytes(), knownEnds[1]);
    EXPECT_TRUE(cursor.next(record));
    EXPECT_EQ(record.kind, knownRecords[1].first);
    EXPECT_FALSE(cursor.skim(record, 3));
    EXPECT_EQ(cursor.end(), JournalEnd::Whole);
    const QByteArray beginning = bytes.first(knownEnds[1] - 1);
    JournalCursor cut(bytesOf(beginning));
    EXPECT_FALSE(cut.skim(record, 3));
    EXPECT_EQ(cut.end(), JournalEnd::CutOff);
}
