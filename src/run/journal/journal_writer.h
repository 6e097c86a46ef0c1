// Writing a journal from a thread of its own, so that a run never waits for a disk.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/journal/byte_ring.h"
#include "run/journal/journal_output.h"

#include <chrono>
#include <condition_variable>
#include <initializer_list>
#include <mutex>
#include <optional>
#include <thread>

struct JournalLimits {
    /// What may wait for the disk, record headers included. A larger record is taken when nothing
    /// waits, so the memory of a writer is the larger of this and the largest record.
    size_t queueBytes = size_t(64) << 20;
    /// The longest time that written data may not be on the disk.
    int forceOutMilliseconds = 1000;
};

enum class JournalFault {
    None,
    WriteFailed, ///< what was queued is lost; the file can be read up to where the disk failed
    QueueFull,   ///< the disk is too slow, or memory ran out; what was queued is still written
};

/// The disk is touched by the thread only; the functions are called by another one.
class JournalWriter {
public:
    /// Starts the thread, which begins with the head of the file; `writeHead` is false when the
    /// output already has one (a continued journal). Without an output (nullptr, a file that could
    /// not be made) the journal has failed from the beginning.
    explicit JournalWriter(std::unique_ptr<JournalOutput> output, bool writeHead = true,
                           JournalLimits limits = {});
    /// Writes what is queued, forces it out and ends the thread: waits for the disk, unless the
    /// journal was abandoned.
    ~JournalWriter();
    JournalWriter(const JournalWriter&) = delete;
    JournalWriter& operator=(const JournalWriter&) = delete;

    /// Copies the parts, which form one payload, into the queue; never waits for the disk. False
    /// once the journal has failed: from then on nothing is taken.
    bool add(uint32_t kind, std::initializer_list<std::span<const uint8_t>> parts);
    /// The first fault.
    [[nodiscard]] JournalFault fault() const;
    /// Waits until all that was taken is on the disk; false when writing failed. After `QueueFull`
    /// true means that the records before it are on the disk.
    bool finish();
    /// Nobody needs the journal any more: it has failed from now on, what is queued is not written,
    /// and only the piece that is being written now is waited for.
    void abandon();

private:
    using Clock = std::chrono::steady_clock; // one that is never set
    using Lock = std::unique_lock<std::mutex>;

    // The functions of the thread. They are called with the lock, and release it while they wait
    // for the disk.
    void run(bool writeHead);
    void waitForWork(Lock& lock);
    [[nodiscard]] bool writeHeadOfFile(Lock& lock);
    [[nodiscard]] bool writeSomeRecords(Lock& lock);
    [[nodiscard]] bool forceOut(Lock& lock);
    [[nodiscard]] bool forceOutIsDue() const;
    [[nodiscard]] size_t nextWriteBytes();
    void fail();

    [[nodiscard]] bool makeRoom(size_t bytes);

    const JournalLimits limits_;
    const std::unique_ptr<JournalOutput> output_; // used by the thread only

    // What the threads share, under the mutex, which is never held while the disk is waited for.
    mutable std::mutex mutex_;
    std::condition_variable work_;   // for the thread: something is to be done
    std::condition_variable forced_; // for finish(): more is on the disk, or the journal has failed
    ByteRing queue_;                 // whole records; those being written stay until they are
    JournalFault fault_ = JournalFault::None;
    bool writingFailed_ = false;
    bool ending_ = false;
    bool abandoned_ = false;
    // Bytes of records, counted from the beginning.
    uint64_t takenBytes_ = 0;
    uint64_t writtenBytes_ = 0;
    std::optional<uint64_t> forcedBytes_;           // none before anything was forced out
    std::optional<uint64_t> wantedBytes_;           // what finish() wants on the disk
    std::optional<Clock::time_point> waitingSince_; // written, but perhaps not on the disk

    std::thread thread_; // the last member: it uses all others
};
