// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/worker_pool.h"

#include <array>
#include <gtest/gtest.h>
#include <numeric>
#include <set>

#ifdef __linux__
#include <sched.h>
#endif

namespace {

// Loops of very different lengths close behind each other: a thread that comes late must not take
// part in the next loop with what it knows of the last one.
TEST(WorkerPool, DoesEachPartOfEachLoopOnce) {
    for (const int threads : {-1, 1, 2, 3, 7}) {
        WorkerPool pool(threads);
        EXPECT_EQ(pool.nrOfThreads(), std::max(threads, 1));
        for (size_t loop = 0; loop < 3000; ++loop) {
            std::vector<size_t> calls(loop * 7 % 23, 0);
            pool.forParts(calls.size(), [&](size_t part) { calls[part] += part + loop; });
            for (size_t part = 0; part < calls.size(); ++part)
                ASSERT_EQ(calls[part], part + loop) << threads << " threads, loop " << loop;
        }
    }
}

TEST(WorkerPool, WakesThreadsThatSleep) {
    WorkerPool pool(3);
    for (int loop = 0; loop < 20; ++loop) {
        std::this_thread::sleep_for(std::chrono::milliseconds(2)); // they have gone to sleep
        std::atomic<int> inside{0};
        // Each part waits for the others: only with three threads at work does it end.
        pool.forParts(3, [&](size_t) {
            ++inside;
            while (inside < 3)
                std::this_thread::yield();
        });
        EXPECT_EQ(inside, 3);
    }
}

#ifdef __linux__
std::vector<int> coresOfThisThread() {
    cpu_set_t set;
    std::vector<int> cores;
    EXPECT_EQ(sched_getaffinity(0, sizeof set, &set), 0);
    for (size_t core = 0; core < CPU_SETSIZE; ++core)
        if (CPU_ISSET(core, &set))
            cores.push_back(int(core));
    return cores;
}

// Woken on the core of the caller they would wait for it.
TEST(WorkerPool, ThreadsLeaveTheCallersCoreToIt) {
    const std::vector<int> cores = coresOfThisThread();
    if (cores.size() < 2)
        GTEST_SKIP() << "there is one core";
    WorkerPool pool(2);
    std::array<std::vector<int>, 2> ofThread;
    std::atomic<int> inside{0};
    pool.forParts(2, [&](size_t, size_t thread) {
        ofThread[thread] = coresOfThisThread();
        ++inside;
        while (inside < 2)
            std::this_thread::yield();
    });
    EXPECT_EQ(ofThread[0], cores);
    // The system may have moved the caller since.
    EXPECT_EQ(ofThread[1].size(), cores.size() - 1);
}
#endif

TEST(WorkerPool, ThreadsAtWorkHaveNumbersOfTheirOwn) {
    WorkerPool pool(2);
    for (const int threads : {2, 5, 1, 3}) {
        pool.setNrOfThreads(threads);
        ASSERT_EQ(pool.nrOfThreads(), threads);
        std::vector<std::atomic<int>> busy(static_cast<size_t>(threads));
        for (int loop = 0; loop < 200; ++loop)
            pool.forParts(13, [&](size_t, size_t thread) {
                ASSERT_LT(thread, busy.size());
                EXPECT_EQ(busy[thread]++, 0);
                std::this_thread::yield();
                --busy[thread];
            });
    }
}

TEST(WorkerPool, SlabsCoverAllIndicesInOrder) {
    for (const int threads : {1, 2, 5}) {
        WorkerPool pool(threads);
        for (const size_t count : {0, 1, 2, 7, 19, 1000}) {
            std::mutex mutex;
            std::set<std::pair<size_t, size_t>> slabs;
            pool.forSlabs(count, [&](size_t first, size_t last) {
                const std::lock_guard lock(mutex);
                slabs.emplace(first, last);
            });
            size_t next = 0;
            for (const auto& [first, last] : slabs) {
                EXPECT_EQ(first, next);
                EXPECT_GT(last, first);
                next = last;
            }
            EXPECT_EQ(next, count);
        }
    }
}

TEST(WorkerPool, LoopsInsidePartsAreDoneByTheirCaller) {
    WorkerPool pool(2);
    std::vector<size_t> sums(8, 0);
    pool.forParts(sums.size(), [&](size_t part) {
        const std::thread::id caller = std::this_thread::get_id();
        pool.forParts(5, [&](size_t inner) {
            EXPECT_EQ(std::this_thread::get_id(), caller);
            sums[part] += inner;
        });
    });
    EXPECT_EQ(std::accumulate(sums.begin(), sums.end(), size_t(0)), 80u);
}

TEST(WorkerPool, ThreadsForAWish) {
    const int cores = nrOfUsableThreads(0);
    EXPECT_GE(cores, 1);
    EXPECT_EQ(nrOfUsableThreads(1), 1);
    EXPECT_EQ(nrOfUsableThreads(cores + 1), cores);
    EXPECT_EQ(nrOfUsableThreads(-3), cores);
}

} // namespace
