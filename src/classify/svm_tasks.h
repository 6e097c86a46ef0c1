// Several pieces of work for libsvm on all cores.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/worker_tasks.h"
#include "classify/svm_library.h"

#include <functional>

/// One task; a failure to allocate may leave it as std::bad_alloc.
using SVMTask = std::function<SVMResult(int task, const std::stop_token& stop)>;

/// Calls `work` once for each index below `nrOfTasks`, as doTasks() does. Not Done when one of the
/// tasks wasn't; those that had not begun are then left out.
[[nodiscard]] SVMResult doSVMTasks(int nrOfTasks, const SVMTask& work, ProgressReporter& progress,
                                   int nrOfThreads = oneThreadPerCore);
