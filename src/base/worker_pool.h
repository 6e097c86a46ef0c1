// Threads that share the work on one volume.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <thread>
#include <type_traits>
#include <vector>

/// Splits a loop of a kernel among the caller's thread and threads of its own, which sleep between
/// the loops. Unlike doTasks() it is for work of microseconds to milliseconds: the caller takes
/// parts as well, no events are processed, nothing is allocated.
///
/// Results must not depend on who works on which part, nor on how many threads there are: parts
/// write to memory of their own, and sums go over parts whose limits depend on the data only.
class WorkerPool {
public:
    /// `nrOfThreads` counts the caller's; of 1 or less, the caller does all the work. Threads that
    /// the system refuses are done without.
    explicit WorkerPool(int nrOfThreads = 1);
    ~WorkerPool();
    WorkerPool(const WorkerPool&) = delete;
    WorkerPool& operator=(const WorkerPool&) = delete;

    /// Threads that work, the caller's included.
    [[nodiscard]] int nrOfThreads() const { return int(threads_.size()) + 1; }
    /// From now on so many, as in the constructor. Not while a loop is worked on.
    void setNrOfThreads(int nrOfThreads);

    /// Calls `work(part)` once for each part below `nrOfParts` (less than 2^32), several at a time,
    /// and returns when all are done. `work` doesn't throw and shows no message. Inside a part, and
    /// while another thread uses the pool, the caller does all the parts itself.
    ///
    /// Work that needs memory of its own takes the number of its thread as well,
    /// `work(part, thread)`: 0 for the caller, and below nrOfThreads().
    template<typename Work> void forParts(size_t nrOfParts, const Work& work) {
        doParts(
            nrOfParts,
            [](const void* context, size_t part, size_t thread) {
                const Work& call = *static_cast<const Work*>(context);
                if constexpr (std::is_invocable_v<const Work&, size_t, size_t>)
                    call(part, thread);
                else
                    call(part);
            },
            &work);
    }

    /// Calls `work(first, last)` for slabs of consecutive indices that cover 0 to `count` - 1,
    /// `last` being one behind the slab. The slabs, a few for each thread, depend on the number of
    /// threads, so this is not for sums.
    template<typename Work> void forSlabs(size_t count, const Work& work) {
        constexpr size_t slabsPerThread = 16; // evens out threads that are held up
        const size_t threads = size_t(nrOfThreads());
        const size_t slabs =
            threads == 1 ? std::min<size_t>(count, 1) : std::min(count, threads * slabsPerThread);
        forParts(slabs,
                 [&](size_t slab) { work(slab * count / slabs, (slab + 1) * count / slabs); });
    }

private:
    using Part = void (*)(const void* context, size_t part, size_t thread);

    void startThreads(int nrOfThreads);
    void endThreads();
    void leaveCallersCore();
    void doParts(size_t nrOfParts, Part part, const void* context);
    void runWorker(size_t thread);
    [[nodiscard]] bool takePart(uint64_t& ticket, size_t thread);
    void noteEndOfPart(size_t nrOfParts);
    void waitForLoop(uint64_t old);
    void waitForParts(size_t nrOfParts);

    // The loop that is being worked on. Its number stands in the upper half of the ticket, and in
    // the lower one how many of its parts are still to be taken, so that a thread that wakes up
    // late can't take a part of a loop that it doesn't know.
    std::atomic<uint64_t> ticket_{0};
    std::atomic<size_t> nrOfParts_{0};
    std::atomic<size_t> partsDone_{0};
    std::atomic<Part> part_{nullptr};
    std::atomic<const void*> context_{nullptr};
    std::atomic<bool> inUse_{false};
    std::atomic<bool> ending_{false};
    std::mutex mutex_; ///< held where a change is made that a sleeping thread waits for
    std::condition_variable loopBegun_;
    std::condition_variable partsAreDone_;
    std::vector<std::thread> threads_;
    int coreLeft_ = -1; ///< the core on which the threads don't run, or -1
};

/// A pool of the caller's thread alone, for whoever has no other.
[[nodiscard]] WorkerPool& callersThread();

/// The threads for a wish: 0 means one for each core, and more than the cores are never used.
[[nodiscard]] int nrOfUsableThreads(int wish);
