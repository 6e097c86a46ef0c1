// The thread of a journal, its queue and its disk.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/journal/journal_writer.h"

#include "journal_content.h"
#include "run/journal/journal_framing.h"
#include "scripted_disk.h"

#include <gtest/gtest.h>

namespace {

constexpr int never = 3'600'000; // milliseconds

class JournalThread : public testing::Test {
protected:
    std::unique_ptr<JournalOutput> output() const { return std::make_unique<ScriptedOutput>(disk); }
    ReadBack written() const {
        const std::lock_guard lock(disk->mutex);
        return readBack(std::span<const uint8_t>(disk->bytes));
    }
    const std::shared_ptr<ScriptedDisk> disk = std::make_shared<ScriptedDisk>();
};

} // namespace

TEST_F(JournalThread, ASlowDiskDelaysNobodyAndAFullQueueEndsTheJournal) {
    constexpr int nrThatFit = 10;
    const std::string payload(100, 'v');
    disk->shut();
    JournalWriter writer(output(), true,
                         {.queueBytes = nrThatFit * (journalRecordHeaderBytes + payload.size()),
                          .forceOutMilliseconds = never});
    for (uint32_t i = 0; i < nrThatFit; ++i)
        EXPECT_TRUE(writer.add(i, {bytesOf(payload)}));
    EXPECT_EQ(writer.fault(), JournalFault::None);
    EXPECT_FALSE(writer.add(nrThatFit, {bytesOf("")}));
    EXPECT_EQ(writer.fault(), JournalFault::QueueFull);

    disk->release();
    EXPECT_TRUE(writer.finish());
    EXPECT_FALSE(writer.add(0, {})) << "there is room again, but a record is missing";
    EXPECT_EQ(writer.fault(), JournalFault::QueueFull);
    EXPECT_TRUE(writer.finish());
    const ReadBack read = written();
    EXPECT_EQ(read.result.end, JournalEnd::Whole);
    ASSERT_EQ(read.records.size(), size_t(nrThatFit));
    for (uint32_t i = 0; i < nrThatFit; ++i)
        EXPECT_EQ(read.records[i], Record(i, payload));
}

TEST_F(JournalThread, ForcingOutDelaysNobodyAndTheFirstFaultIsTold) {
    disk->forcesOut = false;
    JournalWriter writer(output(), true, {.queueBytes = 100, .forceOutMilliseconds = 0});
    disk->waitUntil([&] { return disk->calls == "WF"; });
    EXPECT_TRUE(writer.add(1, {bytesOf("line")}));
    EXPECT_FALSE(writer.add(2, {bytesOf(std::string(100, 'v'))}));
    disk->set([&] {
        disk->failingCall = 2;
        disk->forcesOut = true;
    });
    EXPECT_FALSE(writer.finish());
    EXPECT_EQ(writer.fault(), JournalFault::QueueFull);
}

TEST_F(JournalThread, AnEmptyQueueTakesARecordOfAnySize) {
    const std::string large(100'000, 'v');
    JournalWriter writer(output(), true, {.queueBytes = 100, .forceOutMilliseconds = never});
    EXPECT_TRUE(writer.add(1, {bytesOf(large)}));
    EXPECT_TRUE(writer.finish());
    disk->shut();
    EXPECT_TRUE(writer.add(2, {bytesOf(large), bytesOf(large)}));
    EXPECT_FALSE(writer.add(3, {}));
    disk->release();
    EXPECT_TRUE(writer.finish());
    EXPECT_EQ(written().records, (std::vector<Record>{{1, large}, {2, large + large}}));
}

// The disk takes what was queued first only when the queue is full, so that records go over the end
// of its memory again and again.
TEST_F(JournalThread, RecordsGoRoundTheQueue) {
    constexpr size_t queueBytes = 1000;
    std::vector<Record> records;
    size_t taken = journalHeadBytes;
    size_t forced = 0;
    disk->open = false;
    disk->shutsWhenForced = true;
    JournalWriter writer(output(), true, {.queueBytes = queueBytes, .forceOutMilliseconds = 0});
    for (uint32_t i = 0; i < 500; ++i) {
        const Record& record =
            records.emplace_back(i, std::string(i * 37 % 211, char('a' + i % 26)));
        taken += journalRecordHeaderBytes + record.second.size();
        while (taken > forced + queueBytes) {
            disk->release();
            disk->waitUntil([&] { return disk->forced > forced; });
            disk->set([&] { forced = disk->forced; });
        }
        EXPECT_TRUE(writer.add(i, {bytesOf(record.second)}));
    }
    disk->set([&] {
        disk->shutsWhenForced = false;
        disk->open = true;
    });
    EXPECT_TRUE(writer.finish());
    EXPECT_EQ(written().records, records);
}

TEST_F(JournalThread, ThreadsMayAddAtOnce) {
    constexpr uint32_t nrEach = 200;
    {
        JournalWriter writer(output());
        const auto addAll = [&writer](uint32_t kind) {
            for (uint32_t i = 0; i < nrEach; ++i)
                EXPECT_TRUE(writer.add(kind, {bytesOf(std::to_string(i))}));
        };
        std::jthread other(addAll, 1);
        addAll(0);
    }
    const ReadBack read = written();
    std::array<uint32_t, 2> next{};
    for (const auto& [kind, payload] : read.records)
        EXPECT_EQ(payload, std::to_string(next.at(kind)++));
    EXPECT_EQ(next[0] + next[1], 2 * nrEach);
    EXPECT_EQ(read.result.end, JournalEnd::Whole);
}

// Each record is on the disk when finish() has returned.
TEST(JournalDisk, AFailureAtAnyCallLeavesWhatWasWritten) {
    for (int failing = 0; failing < 12; ++failing) {
        SCOPED_TRACE(failing);
        const auto disk = std::make_shared<ScriptedDisk>();
        disk->failingCall = failing;
        JournalWriter writer(std::make_unique<ScriptedOutput>(disk), true,
                             {.queueBytes = 1000, .forceOutMilliseconds = 0});
        uint32_t nrFinished = 0;
        while (writer.add(nrFinished, {bytesOf("volume")}) && writer.finish())
            ++nrFinished;
        EXPECT_EQ(writer.fault(), JournalFault::WriteFailed);
        EXPECT_FALSE(writer.finish());
        EXPECT_FALSE(writer.add(0, {}));
        const ReadBack read = readBack(std::span<const uint8_t>(disk->bytes));
        EXPECT_EQ(int(disk->calls.size()), failing + 1) << "the disk is left alone";
        // A record that was written but not forced out may be there.
        EXPECT_GE(read.records.size(), nrFinished);
        EXPECT_LE(read.records.size(), nrFinished + 1);
        for (uint32_t i = 0; i < read.records.size(); ++i)
            EXPECT_EQ(read.records[i], Record(i, "volume"));
        EXPECT_EQ(read.result.end,
                  disk->calls.back() == 'W' ? JournalEnd::CutOff : JournalEnd::Whole);
    }
}

TEST(JournalDisk, WithoutAFileTheJournalHasFailed) {
    JournalWriter writer(nullptr);
    EXPECT_EQ(writer.fault(), JournalFault::WriteFailed);
    EXPECT_FALSE(writer.add(1, {}));
    EXPECT_FALSE(writer.finish());
}

TEST_F(JournalThread, SmallRecordsAreWrittenAndForcedOutTogether) {
    disk->shut();
    JournalWriter writer(output(), true, {.forceOutMilliseconds = never});
    disk->waitUntil([&] { return disk->calls == "W"; }); // the head
    for (uint32_t i = 0; i < 100; ++i)
        EXPECT_TRUE(writer.add(i, {bytesOf("line")}));
    disk->release();
    EXPECT_TRUE(writer.finish());
    EXPECT_EQ(disk->calls, "WWF");
    EXPECT_TRUE(writer.finish());
    EXPECT_EQ(disk->calls, "WWF") << "nothing new";
}

TEST_F(JournalThread, DataAreForcedOutInTimeAlsoWhileMoreWait) {
    const std::string large(size_t(1) << 20, 'v'); // each is written on its own
    disk->shut();
    JournalWriter writer(output(), true, {.forceOutMilliseconds = 0});
    for (uint32_t i = 0; i < 3; ++i)
        EXPECT_TRUE(writer.add(i, {bytesOf(large)}));
    disk->release();
    disk->waitUntil([&] { return disk->calls == "WFWFWFWF"; });
}

TEST_F(JournalThread, AQueueThatRanEmptyIsForcedOutWhenItIsTime) {
    JournalWriter writer(output(), false, {.forceOutMilliseconds = 1});
    EXPECT_TRUE(writer.add(1, {}));
    disk->waitUntil([&] { return disk->calls == "WF"; });
}

TEST_F(JournalThread, TheEndWritesAndForcesOutWhatIsQueued) {
    disk->shut();
    {
        JournalWriter writer(output(), true, {.forceOutMilliseconds = never});
        disk->waitUntil([&] { return disk->calls == "W"; });
        EXPECT_TRUE(writer.add(1, {bytesOf("last")}));
        disk->release();
    }
    EXPECT_EQ(disk->calls, "WWF");
    EXPECT_EQ(written().records, (std::vector<Record>{{1, "last"}}));
}
