// The thread of a journal, its queue and its disk.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/journal/journal_writer.h"

#include "journal_content.h"
#include "run/journal/journal_framing.h"

namespace {

/// A disk in memory that is as slow as a test wants, and fails when it says.
struct ScriptedDisk {
    std::mutex mutex;
    std::condition_variable changed;
    bool open = true;             ///< while it isn't, writes wait
    bool forcesOut = true;        ///< while it doesn't, forcing out waits
    bool shutsWhenForced = false; ///< so that one piece of work is done each time it is opened
    int failingCall = -1;         ///< index of the call that fails
    std::vector<uint8_t> bytes;
    std::string calls; ///< W for each write, F for each time that data were forced out
    size_t forced = 0; ///< bytes that were forced out

    void set(const std::function<void()>& change) {
        {
            const std::lock_guard lock(mutex);
            change();
        }
        changed.notify_all();
    }
    /// Waits as long as it takes; what never comes runs into the time limit of the test program.
    void waitUntil(const std::function<bool()>& condition) {
        std::unique_lock lock(mutex);
        changed.wait(lock, condition);
    }
};

class ScriptedOutput : public JournalOutput {
public:
    explicit ScriptedOutput(std::shared_ptr<ScriptedDisk> disk) : disk_(std::move(disk)) {}

    bool write(std::span<const uint8_t> bytes) override {
        std::unique_lock lock(disk_->mutex);
        const bool good = begin('W');
        disk_->changed.wait(lock, [this] { return disk_->open; });
        // A full disk takes a part.
        const auto taken = bytes.first(good ? bytes.size() : bytes.size() / 2);
        disk_->bytes.insert(disk_->bytes.end(), taken.begin(), taken.end());
        return good;
    }
    bool forceOut() override {
        std::unique_lock lock(disk_->mutex);
        const bool good = begin('F');
        disk_->changed.wait(lock, [this] { return disk_->forcesOut; });
        disk_->forced = disk_->bytes.size();
        disk_->open = disk_->open && !disk_->shutsWhenForced;
        disk_->changed.notify_all();
        return good;
    }

private:
    bool begin(char call) {
        const bool good = disk_->failingCall < 0 || int(disk_->calls.size()) < disk_->failingCall;
        disk_->calls.push_back(call);
        disk_->changed.notify_all();
        return good;
    }
    std::shared_ptr<ScriptedDisk> disk_;
};

constexpr int never = 3'600'000; // milliseconds

class JournalThread : public testing::Test {
protected:
    JournalWriter writerWith(JournalLimits limits = {.forceOutMilliseconds = never},
                             bool writeHead = true) const {
        return JournalWriter(std::make_unique<ScriptedOutput>(disk), writeHead, limits);
    }
    ReadBack written() const {
        const std::lock_guard lock(disk->mutex);
        return readBack(std::span<const uint8_t>(disk->bytes));
    }
    const std::shared_ptr<ScriptedDisk> disk = std::make_shared<ScriptedDisk>();
};

std::vector<Record> numbered(uint32_t count, const std::string& payload) {
    std::vector<Record> records;
    for (uint32_t kind = 0; kind < count; ++kind)
        records.emplace_back(kind, payload);
    return records;
}

} // namespace

TEST_F(JournalThread, ASlowDiskDelaysNobodyAndAFullQueueEndsTheJournal) {
    const std::vector<Record> records = numbered(10, std::string(100, 'v'));
    disk->set([&] { disk->open = false; });
    JournalWriter writer = writerWith(
        {.queueBytes = 10 * (journalRecordHeaderBytes + 100), .forceOutMilliseconds = never});
    for (const auto& [kind, payload] : records)
        EXPECT_TRUE(writer.add(kind, {bytesOf(payload)}));
    EXPECT_EQ(writer.fault(), JournalFault::None);
    EXPECT_FALSE(writer.add(10, {bytesOf("")}));
    disk->set([&] { disk->open = true; });
    EXPECT_TRUE(writer.finish());
    EXPECT_FALSE(writer.add(0, {})) << "there is room again, but a record is missing";
    EXPECT_EQ(writer.fault(), JournalFault::QueueFull);
    EXPECT_TRUE(writer.finish());
    EXPECT_EQ(written().result.end, JournalEnd::Whole);
    EXPECT_EQ(written().records, records);
}

TEST_F(JournalThread, ForcingOutDelaysNobodyAndTheFirstFaultIsTold) {
    disk->forcesOut = false;
    JournalWriter writer = writerWith({.queueBytes = 100, .forceOutMilliseconds = 0});
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
    JournalWriter writer = writerWith({.queueBytes = 100, .forceOutMilliseconds = never});
    EXPECT_TRUE(writer.add(1, {bytesOf(large)}) && writer.finish());
    disk->set([&] { disk->open = false; });
    EXPECT_TRUE(writer.add(2, {bytesOf(large), bytesOf(large)}));
    EXPECT_FALSE(writer.add(3, {}));
    disk->set([&] { disk->open = true; });
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
    JournalWriter writer = writerWith({.queueBytes = queueBytes, .forceOutMilliseconds = 0});
    for (uint32_t i = 0; i < 500; ++i) {
        const Record& record =
            records.emplace_back(i, std::string(i * 37 % 211, char('a' + i % 26)));
        taken += journalRecordHeaderBytes + record.second.size();
        while (taken > forced + queueBytes) {
            disk->set([&] { disk->open = true; });
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

// Each record is on the disk when finish() has returned.
TEST_F(JournalThread, AFailureAtAnyCallLeavesWhatWasWritten) {
    for (int failing = 0; failing < 12; ++failing) {
        SCOPED_TRACE(failing);
        disk->set([&] {
            disk->failingCall = failing;
            disk->bytes.clear();
            disk->calls.clear();
        });
        JournalWriter writer = writerWith({.queueBytes = 1000, .forceOutMilliseconds = 0});
        uint32_t nrFinished = 0;
        while (writer.add(nrFinished, {bytesOf("volume")}) && writer.finish())
            ++nrFinished;
        EXPECT_EQ(writer.fault(), JournalFault::WriteFailed);
        EXPECT_FALSE(writer.finish() || writer.add(0, {}));
        EXPECT_EQ(int(disk->calls.size()), failing + 1) << "the disk is left alone";
        const ReadBack read = written();
        // A record that was written but not forced out may be there.
        EXPECT_TRUE(read.records == numbered(nrFinished, "volume") ||
                    read.records == numbered(nrFinished + 1, "volume"));
        EXPECT_EQ(read.result.end,
                  disk->calls.back() == 'W' ? JournalEnd::CutOff : JournalEnd::Whole);
    }
}

TEST_F(JournalThread, WithoutAFileTheJournalHasFailed) {
    JournalWriter writer(nullptr);
    EXPECT_EQ(writer.fault(), JournalFault::WriteFailed);
    EXPECT_FALSE(writer.add(1, {}) || writer.finish());
}

TEST_F(JournalThread, SmallRecordsAreWrittenAndForcedOutTogether) {
    const std::vector<Record> records = numbered(100, "line");
    for (const bool finishes : {true, false}) {
        disk->set([&] {
            disk->open = false;
            disk->bytes.clear();
            disk->calls.clear();
        });
        {
            JournalWriter writer = writerWith();
            disk->waitUntil([&] { return disk->calls == "W"; }); // the head
            for (const auto& [kind, payload] : records)
                EXPECT_TRUE(writer.add(kind, {bytesOf(payload)}));
            disk->set([&] { disk->open = true; });
            for (int i = 0; i < 2 && finishes; ++i) { // nothing new the second time
                EXPECT_TRUE(writer.finish());
                EXPECT_EQ(disk->calls, "WWF");
            }
        }
        EXPECT_EQ(disk->calls, "WWF") << "also when the writer goes";
        EXPECT_EQ(written().records, records);
    }
}

TEST_F(JournalThread, DataAreForcedOutInTimeAlsoWhileMoreWait) {
    const std::string large(size_t(1) << 20, 'v'); // each is written on its own
    disk->set([&] { disk->open = false; });
    JournalWriter writer = writerWith({.forceOutMilliseconds = 0});
    for (uint32_t i = 0; i < 3; ++i)
        EXPECT_TRUE(writer.add(i, {bytesOf(large)}));
    disk->set([&] { disk->open = true; });
    disk->waitUntil([&] { return disk->calls == "WFWFWFWF"; });
}

TEST_F(JournalThread, AQueueThatRanEmptyIsForcedOutWhenItIsTime) {
    JournalWriter writer = writerWith({.forceOutMilliseconds = 1}, false);
    EXPECT_TRUE(writer.add(1, {}));
    disk->waitUntil([&] { return disk->calls == "WF"; });
}
