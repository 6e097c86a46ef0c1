// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/journal/journal_writer.h"

#include "run/journal/journal_framing.h"

#include <numeric>
#include <system_error>

#ifdef Q_OS_LINUX
#include <pthread.h>
#include <sys/resource.h>
#endif

namespace {

/// Woken by a record, the thread must not take a processor from the loop that has added it, nor
/// from the threads that work on the volume, which leave it most of a TR. No more than a request:
/// where it fails, the thread works all the same.
void yieldToOthers() {
#ifdef Q_OS_LINUX
    const sched_param parameters{};
    static_cast<void>(pthread_setschedparam(pthread_self(), SCHED_BATCH, &parameters));
    constexpr id_t callingThread = 0; // on Linux each thread has a value of its own
    constexpr int lowered = 10;       // a tenth of a processor that others want as well
    static_cast<void>(setpriority(PRIO_PROCESS, callingThread, lowered));
#endif
}

/// Small records are written together, up to this size.
constexpr size_t togetherBytes = size_t(256) << 10;

JournalRecordHeaderBytes headerAt(const RingStretch& records, size_t offset) {
    JournalRecordHeaderBytes bytes;
    records.part(offset, bytes.size()).copyTo(bytes);
    return bytes;
}

size_t recordBytes(const JournalRecordHeaderBytes& header) {
    return journalRecordHeaderBytes + size_t(parsedRecordHeader(header).length);
}

/// Fills in the checksums of whole records. Not done as they are added, since it takes longer than
/// copying them.
void sealRecords(const RingStretch& records, size_t count) {
    for (size_t offset = 0; offset < count;) {
        JournalRecordHeaderBytes bytes = headerAt(records, offset);
        const size_t size = recordBytes(bytes);
        uint32_t checksum = checksumOfHeader(bytes);
        const RingStretch payload = records.part(offset + bytes.size(), size - bytes.size());
        for (const std::span<uint8_t> piece : payload.pieces())
            checksum = checksumWith(checksum, piece);
        JournalRecordHeader header = parsedRecordHeader(bytes);
        header.checksum = checksum;
        bytes = encodedRecordHeader(header);
        records.part(offset, bytes.size()).copyFrom(bytes);
        offset += size;
    }
}

} // namespace

JournalWriter::JournalWriter(std::unique_ptr<JournalOutput> output, bool writeHead,
                             JournalLimits limits)
    : limits_(limits), output_(std::move(output)) {
    // A failure shows when the first record finds no room.
    static_cast<void>(queue_.allocate(limits_.queueBytes));
    if (!output_) {
        fail();
        return;
    }
    try {
        thread_ = std::thread([this, writeHead] { run(writeHead); });
    } catch (const std::system_error&) {
        fail();
    }
}

JournalWriter::~JournalWriter() {
    {
        const Lock lock(mutex_);
        ending_ = true;
    }
    work_.notify_one();
    if (thread_.joinable())
        thread_.join();
}

bool JournalWriter::add(uint32_t kind, std::initializer_list<std::span<const uint8_t>> parts) {
    const size_t length = std::accumulate(
        parts.begin(), parts.end(), size_t(0),
        [](size_t sum, std::span<const uint8_t> part) { return sum + part.size(); });
    const JournalRecordHeaderBytes header = encodedRecordHeader({kind, length, 0});
    {
        const Lock lock(mutex_);
        if (fault_ != JournalFault::None)
            return false;
        if (!makeRoom(header.size() + length)) {
            fault_ = JournalFault::QueueFull;
            return false;
        }
        queue_.append(header);
        for (const std::span<const uint8_t> part : parts)
            queue_.append(part);
        takenBytes_ += header.size() + length;
    }
    work_.notify_one();
    return true;
}

JournalFault JournalWriter::fault() const {
    const Lock lock(mutex_);
    return fault_;
}

bool JournalWriter::finish() {
    Lock lock(mutex_);
    const uint64_t wanted = takenBytes_;
    const auto onDisk = [&] { return forcedBytes_ && *forcedBytes_ >= wanted; };
    if (!onDisk())
        wantedBytes_ = wanted;
    work_.notify_one();
    forced_.wait(lock, [&] { return writingFailed_ || onDisk(); });
    return onDisk();
}

void JournalWriter::abandon() {
    const Lock lock(mutex_);
    abandoned_ = true;
    if (fault_ == JournalFault::None)
        fault_ = JournalFault::WriteFailed;
}

bool JournalWriter::makeRoom(size_t bytes) {
    if (bytes <= queue_.room())
        return true;
    return queue_.empty() && queue_.allocate(std::max(bytes, limits_.queueBytes));
}

void JournalWriter::run(bool writeHead) {
    yieldToOthers();
    Lock lock(mutex_);
    bool good = !writeHead || writeHeadOfFile(lock);
    bool ended = false;
    while (good && !ended) {
        waitForWork(lock);
        if (abandoned_)
            good = false;
        else if (forceOutIsDue())
            good = forceOut(lock);
        else if (!queue_.empty())
            good = writeSomeRecords(lock);
        else
            ended = true;
    }
    if (!good)
        fail();
}

void JournalWriter::waitForWork(Lock& lock) {
    const auto somethingToDo = [this] { return !queue_.empty() || ending_ || forceOutIsDue(); };
    if (waitingSince_) {
        const auto due = *waitingSince_ + std::chrono::milliseconds(limits_.forceOutMilliseconds);
        work_.wait_until(lock, due, somethingToDo);
    } else {
        work_.wait(lock, somethingToDo);
    }
}

bool JournalWriter::forceOutIsDue() const {
    if (wantedBytes_ && writtenBytes_ >= *wantedBytes_)
        return true;
    if (!waitingSince_)
        return false;
    const auto limit = std::chrono::milliseconds(limits_.forceOutMilliseconds);
    return (ending_ && queue_.empty()) || Clock::now() - *waitingSince_ >= limit;
}

bool JournalWriter::writeHeadOfFile(Lock& lock) {
    waitingSince_ = Clock::now();
    lock.unlock();
    const bool good = output_->write(journalHead());
    lock.lock();
    return good;
}

bool JournalWriter::writeSomeRecords(Lock& lock) {
    const size_t count = nextWriteBytes();
    const RingStretch records = queue_.front(count);
    if (!waitingSince_)
        waitingSince_ = Clock::now();
    lock.unlock();
    sealRecords(records, count);
    bool good = true;
    for (const std::span<const uint8_t> piece : records.pieces())
        good = good && (piece.empty() || output_->write(piece));
    lock.lock();
    if (good) {
        queue_.drop(count);
        writtenBytes_ += count;
    }
    return good;
}

size_t JournalWriter::nextWriteBytes() {
    const RingStretch all = queue_.front(queue_.size());
    size_t count = recordBytes(headerAt(all, 0));
    while (count < queue_.size()) {
        const size_t next = recordBytes(headerAt(all, count));
        if (count + next > togetherBytes)
            break;
        count += next;
    }
    return count;
}

bool JournalWriter::forceOut(Lock& lock) {
    const uint64_t written = writtenBytes_;
    waitingSince_.reset();
    lock.unlock();
    const bool good = output_->forceOut();
    lock.lock();
    if (!good)
        return false;
    forcedBytes_ = written;
    if (wantedBytes_ && written >= *wantedBytes_)
        wantedBytes_.reset();
    forced_.notify_all();
    return true;
}

void JournalWriter::fail() {
    writingFailed_ = true;
    if (fault_ == JournalFault::None)
        fault_ = JournalFault::WriteFailed;
    queue_ = ByteRing();
    forced_.notify_all();
}
