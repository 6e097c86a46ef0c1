// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/worker_tasks.h"

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

namespace {

/// What the workers share: the tasks that are still to begin, and how many have ended.
class TaskList {
public:
    explicit TaskList(int count) : count_(count) {}

    /// The next task; -1 when there is none.
    int take(const std::stop_token& stop) {
        const std::lock_guard lock(mutex_);
        return stop.stop_requested() || next_ == count_ ? -1 : next_++;
    }
    void noteEnd() {
        const std::lock_guard lock(mutex_);
        ++ended_;
        changed_.notify_one();
    }
    void noteWorkerEnd() {
        const std::lock_guard lock(mutex_);
        ++workersEnded_;
        changed_.notify_one();
    }
    /// Waits a little for a change. The number of ended tasks.
    int waitForChange(bool& workersDone, int nrOfWorkers) {
        constexpr auto reportInterval = std::chrono::milliseconds(20);
        std::unique_lock lock(mutex_);
        changed_.wait_for(lock, reportInterval, [&] { return workersEnded_ == nrOfWorkers; });
        workersDone = workersEnded_ == nrOfWorkers;
        return ended_;
    }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    int count_;
    int next_ = 0;
    int ended_ = 0;
    int workersEnded_ = 0;
};

using Work = std::function<void(int, const std::stop_token&)>;

/// `nrOfThreads` workers, or as many as the system allows.
std::vector<std::jthread> startWorkers(int nrOfThreads, TaskList& tasks, const Work& work,
                                       const std::stop_token& stop) {
    std::vector<std::jthread> workers;
    workers.reserve(size_t(nrOfThreads));
    try {
        for (int i = 0; i < nrOfThreads; ++i)
            workers.emplace_back([&tasks, &work, stop] {
                for (int task = tasks.take(stop); task >= 0; task = tasks.take(stop)) {
                    work(task, stop);
                    tasks.noteEnd();
                }
                tasks.noteWorkerEnd();
            });
    } catch (const std::system_error&) {
        // Fewer threads only take longer.
    }
    return workers;
}

/// Asks only between two tasks whether they are cancelled.
bool doTasksInCaller(int nrOfTasks, const Work& work, const StepProgress& report) {
    for (int task = 0; task < nrOfTasks; ++task) {
        if (!report.advance(task, nrOfTasks))
            return false;
        work(task, std::stop_token());
    }
    return report.advance(nrOfTasks, nrOfTasks);
}

} // namespace

bool doTasks(int nrOfTasks, const std::function<void(int, const std::stop_token&)>& work,
             ProgressReporter& progress, int nrOfThreads) {
    TaskList tasks(std::max(nrOfTasks, 0));
    std::stop_source stop;
    const int wanted =
        nrOfThreads == oneThreadPerCore ? int(std::thread::hardware_concurrency()) : nrOfThreads;
    const int allowed = std::clamp(wanted, 1, std::max(nrOfTasks, 1));
    const std::vector<std::jthread> workers = startWorkers(allowed, tasks, work, stop.get_token());
    const StepProgress report(progress);
    if (workers.empty())
        return doTasksInCaller(std::max(nrOfTasks, 0), work, report);
    for (bool workersDone = false; !workersDone;) {
        const int ended = tasks.waitForChange(workersDone, int(workers.size()));
        if (!report.advance(ended, nrOfTasks))
            stop.request_stop();
    }
    return !stop.stop_requested();
}
