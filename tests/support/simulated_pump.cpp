// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/simulated_pump.h"

void SimulatedPump::processEvents() {
    now_ += eventCost_;
    runDue();
}

void SimulatedPump::pumpWait(int milliseconds) {
    ++nrOfWaits_;
    const qint64 end = now_ + milliseconds;
    while (!actions_.empty() && actions_.begin()->first <= end) {
        now_ = std::max(now_, actions_.begin()->first);
        runDue();
    }
    now_ = end;
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
