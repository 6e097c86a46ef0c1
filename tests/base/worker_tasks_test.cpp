// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/worker_tasks.h"

#include <algorithm>
#include <atomic>
#include <functional>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

#ifdef __linux__
#include <sys/resource.h>
#include <unistd.h>
#endif

namespace {

/// Collects reports, and cancels when a test says so.
class Probe : public ProgressReporter {
public:
    void setProgress(int percent) override {
        thread = std::this_thread::get_id();
        reports.push_back(percent);
    }
    [[nodiscard]] bool cancelled() const override { return cancels && cancels(); }

    std::thread::id thread;
    std::vector<int> reports;
    std::function<bool()> cancels;
};

} // namespace

TEST(WorkerTasks, EachIsDoneOnceAndReportedOnTheCallersThread) {
    for (const int threads : {-1, 1, 3, 50}) {
        for (const int tasks : {0, 1, 20}) {
            Probe probe;
            std::vector<std::atomic<int>> calls(size_t(tasks) + 1);
            std::atomic<int> onCaller = 0;
            const std::thread::id caller = std::this_thread::get_id();
            EXPECT_TRUE(doTasks(
                tasks,
                [&](int task, const std::stop_token& stop) {
                    ++calls[size_t(task)];
                    onCaller += std::this_thread::get_id() == caller || stop.stop_requested();
                },
                probe, threads));
            for (int task = 0; task < tasks; ++task)
                EXPECT_EQ(calls[size_t(task)], 1);
            EXPECT_EQ(onCaller, 0);
            EXPECT_EQ(probe.thread, caller);
            EXPECT_TRUE(std::is_sorted(probe.reports.begin(), probe.reports.end()));
            EXPECT_EQ(probe.reports.back(), tasks == 0 ? 0 : 100);
        }
    }
}

// Each task waits for the others: they would never end one after the other.
TEST(WorkerTasks, WorkSideBySide) {
    Probe probe;
    std::atomic<int> begun = 0;
    EXPECT_TRUE(doTasks(
        3,
        [&](int, const std::stop_token&) {
            for (++begun; begun < 3;)
                std::this_thread::yield();
        },
        probe, 3));
}

TEST(WorkerTasks, CancellingEndsTheRunningOnesAndBeginsNoOther) {
    Probe probe;
    std::atomic<int> begun = 0;
    probe.cancels = [&] { return begun >= 2; };
    std::atomic<int> running = 0;
    EXPECT_FALSE(doTasks(
        100,
        [&](int, const std::stop_token& stop) {
            ++running;
            for (++begun; !stop.stop_requested();)
                std::this_thread::yield();
            --running;
        },
        probe, 2));
    EXPECT_EQ(begun, 2);
    EXPECT_EQ(running, 0) << "nobody works on when it returns";
}

#ifdef __linux__
// In a process of its own that may start no thread. Root may always, so it becomes somebody else.
TEST(WorkerTasks, AreDoneByTheCallerWhereTheSystemRefusesThreads) {
    const auto refuseThreads = [] {
        const rlimit none{0, 0};
        return (getuid() != 0 || setuid(65534) == 0) && setrlimit(RLIMIT_NPROC, &none) == 0;
    };
    const auto doThem = [] {
        Probe probe;
        std::vector<int> calls(4);
        const bool done = doTasks(
            4, [&](int task, const std::stop_token&) { ++calls[size_t(task)]; }, probe, 4);
        return done && calls == std::vector{1, 1, 1, 1} &&
               probe.reports == std::vector{0, 25, 50, 75, 100};
    };
    const auto cancelHalfway = [] {
        Probe probe;
        probe.cancels = [&] { return probe.reports.back() == 50; };
        int begun = 0;
        const auto count = [&](int, const std::stop_token&) { ++begun; };
        return !doTasks(4, count, probe, 4) && begun == 2;
    };
    EXPECT_EXIT(_exit(refuseThreads() && doThem() && cancelHalfway() ? 0 : 1),
                testing::ExitedWithCode(0), "");
}
#endif
