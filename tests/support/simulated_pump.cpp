// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/simulated_pump.h"

#include <utility>

void SimulatedPump::processEvents() {
    now_ += eventCost_;
    runDue();
}

void SimulatedPump::pumpWait(int milliseconds) {
    waitUnless(milliseconds, false);
}

bool SimulatedPump::pumpWaitForChange(int milliseconds, const QStringList& folders) {
    watchedFolders_ = folders;
    waitUnless(milliseconds, changed_);
    return std::exchange(changed_, false);
}

void SimulatedPump::waitUnless(int milliseconds, const bool& done) {
    ++nrOfWaits_;
    const qint64 end = now_ + milliseconds;
    while (!done && !actions_.empty() && actions_.begin()->first <= end) {
        now_ = std::max(now_, actions_.begin()->first);
        runDue();
    }
    if (!done)
        now_ = std::max(now_, end); // an action may have waited for longer
}

void SimulatedPump::after(qint64 milliseconds, std::function<void()> action) {
    actions_.emplace(now_ + milliseconds, std::move(action));
}

void SimulatedPump::runDue() {
    while (!actions_.empty() && actions_.begin()->first <= now_) {
        const std::function<void()> action = std::move(actions_.begin()->second);
        actions_.erase(actions_.begin());
        action();
    }
}
