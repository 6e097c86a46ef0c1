// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/svm_tasks.h"

#include <atomic>
#include <new>

namespace {

SVMResult resultOf(const SVMTask& work, int task, const std::stop_token& stop) {
    try {
        return work(task, stop);
    } catch (const std::bad_alloc&) {
        return SVMResult::OutOfMemory;
    }
}

} // namespace

SVMResult doSVMTasks(int nrOfTasks, const SVMTask& work, ProgressReporter& progress,
                     int nrOfThreads) {
    std::atomic<SVMResult> result = SVMResult::Done;
    const auto doTask = [&](int task, const std::stop_token& stop) {
        if (result != SVMResult::Done)
            return;
        const SVMResult ofTask = resultOf(work, task, stop);
        if (ofTask != SVMResult::Done)
            result = ofTask;
    };
    return doTasks(nrOfTasks, doTask, progress, nrOfThreads) ? result.load() : SVMResult::Stopped;
}
