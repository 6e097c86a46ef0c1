// Independent tasks on several threads, while the window stays alive.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/progress.h"

#include <functional>
#include <stop_token>

inline constexpr int oneThreadPerCore = 0;

/// Calls `work` once for each index below `nrOfTasks`, on worker threads, in any order. A task
/// works on memory of its own and on what nobody else changes meanwhile, shows no message, and ends
/// early once `stop` asks for it. The caller's thread reports the share of tasks that are done
/// every 20 ms, which keeps the window alive. Returns when no worker runs any more: true when all
/// tasks were done, false when they were cancelled.
///
/// Where the system allows fewer threads they do all tasks. Where it allows none the caller does
/// them, and reports between two of them; `stop` never asks then.
[[nodiscard]] bool doTasks(int nrOfTasks,
                           const std::function<void(int task, const std::stop_token& stop)>& work,
                           ProgressReporter& progress, int nrOfThreads = oneThreadPerCore);
