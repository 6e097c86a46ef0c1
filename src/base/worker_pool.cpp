// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/worker_pool.h"

#include <system_error>

#ifdef __linux__
#include <pthread.h>
#include <sched.h>
#endif

namespace {

constexpr uint64_t oneLoop = uint64_t(1) << 32;
constexpr size_t callerNumber = 0;

size_t partsLeft(uint64_t ticket) {
    return size_t(ticket % oneLoop);
}

/// True when the condition came true soon. A volume's loops follow each other within microseconds,
/// and a thread that sleeps takes longer to come.
template<typename Condition> bool comesSoon(const Condition& condition) {
    constexpr int looks = 2000; // 20 to 100 microseconds
    for (int i = 0; i < looks; ++i) {
        if (condition())
            return true;
#if defined(__x86_64__)
        __builtin_ia32_pause();
#endif
    }
    return false;
}

} // namespace

WorkerPool::WorkerPool(int nrOfThreads) {
    startThreads(nrOfThreads);
}

WorkerPool::~WorkerPool() {
    endThreads();
}

void WorkerPool::setNrOfThreads(int nrOfThreads) {
    if (std::max(nrOfThreads, 1) == this->nrOfThreads())
        return;
    endThreads();
    startThreads(nrOfThreads);
}

void WorkerPool::startThreads(int nrOfThreads) {
    ending_.store(false);
    threads_.reserve(size_t(std::max(nrOfThreads - 1, 0)));
    try {
        for (int i = 1; i < nrOfThreads; ++i)
            threads_.emplace_back([this, i] { runWorker(size_t(i)); });
    } catch (const std::system_error&) {
        // Fewer threads only take longer.
    }
}

// The system wakes a thread on the core of the one that wakes it, as if it were to take over, and
// moves it to an idle core only when it balances its load. By then, milliseconds later, the volume
// is done. So the threads are kept off the core on which the caller is. Where that isn't possible
// they run wherever the system lets them.
void WorkerPool::leaveCallersCore() {
#ifdef __linux__
    const int core = sched_getcpu();
    cpu_set_t cores;
    if (core < 0 || core == coreLeft_ ||
        pthread_getaffinity_np(pthread_self(), sizeof cores, &cores) != 0)
        return;
    coreLeft_ = core;
    CPU_CLR(size_t(core), &cores);
    if (CPU_COUNT(&cores) == 0)
        return;
    for (std::thread& thread : threads_)
        static_cast<void>(pthread_setaffinity_np(thread.native_handle(), sizeof cores, &cores));
#endif
}

void WorkerPool::endThreads() {
    {
        const std::lock_guard lock(mutex_);
        ending_.store(true);
    }
    loopBegun_.notify_all();
    for (std::thread& thread : threads_)
        thread.join();
    threads_.clear();
    coreLeft_ = -1;
}

// Tries to do the next part of the loop of `ticket`. False when that loop has no parts left. True
// also where another thread was faster: nothing was done then, and `ticket` is the present one.
// What is read of the loop before the exchange belongs to the ticket if the exchange succeeds: a
// loop with parts left is not followed by another.
bool WorkerPool::takePart(uint64_t& ticket, size_t thread) {
    const Part part = part_.load(std::memory_order_relaxed);
    const void* context = context_.load(std::memory_order_relaxed);
    const size_t nrOfParts = nrOfParts_.load(std::memory_order_relaxed);
    const size_t left = partsLeft(ticket);
    if (left == 0)
        return false;
    if (ticket_.compare_exchange_strong(ticket, ticket - 1, std::memory_order_acq_rel,
                                        std::memory_order_acquire)) {
        --ticket;
        part(context, nrOfParts - left, thread);
        noteEndOfPart(nrOfParts);
    }
    return true;
}

void WorkerPool::noteEndOfPart(size_t nrOfParts) {
    if (partsDone_.fetch_add(1, std::memory_order_acq_rel) + 1 < nrOfParts)
        return;
    const std::lock_guard lock(mutex_);
    partsAreDone_.notify_one();
}

void WorkerPool::runWorker(size_t thread) {
    uint64_t ticket = 0;
    while (!ending_.load(std::memory_order_acquire)) {
        while (takePart(ticket, thread)) {
        }
        waitForLoop(ticket);
        ticket = ticket_.load(std::memory_order_acquire);
    }
}

void WorkerPool::waitForLoop(uint64_t old) {
    const auto begun = [&] {
        return ticket_.load(std::memory_order_acquire) != old ||
               ending_.load(std::memory_order_acquire);
    };
    if (comesSoon(begun))
        return;
    std::unique_lock lock(mutex_);
    loopBegun_.wait(lock, begun);
}

void WorkerPool::waitForParts(size_t nrOfParts) {
    const auto done = [&] { return partsDone_.load(std::memory_order_acquire) == nrOfParts; };
    if (comesSoon(done))
        return;
    std::unique_lock lock(mutex_);
    partsAreDone_.wait(lock, done);
}

void WorkerPool::doParts(size_t nrOfParts, Part part, const void* context) {
    const bool alone = threads_.empty() || nrOfParts < 2;
    if (alone || inUse_.exchange(true, std::memory_order_acquire)) {
        for (size_t i = 0; i < nrOfParts; ++i)
            part(context, i, callerNumber);
        return;
    }
    leaveCallersCore();
    part_.store(part, std::memory_order_relaxed);
    context_.store(context, std::memory_order_relaxed);
    nrOfParts_.store(nrOfParts, std::memory_order_relaxed);
    partsDone_.store(0, std::memory_order_relaxed);
    uint64_t ticket = ticket_.load(std::memory_order_relaxed) + oneLoop + nrOfParts;
    {
        const std::lock_guard lock(mutex_);
        ticket_.store(ticket, std::memory_order_release);
    }
    loopBegun_.notify_all();
    while (takePart(ticket, callerNumber)) {
    }
    waitForParts(nrOfParts);
    inUse_.store(false, std::memory_order_release);
}

WorkerPool& callersThread() {
    static WorkerPool pool(1);
    return pool;
}

int nrOfUsableThreads(int wish) {
    const int cores = std::max(int(std::thread::hardware_concurrency()), 1);
    return wish <= 0 ? cores : std::min(wish, cores);
}
