// Simulated time: waiting takes no time at all, and things happen at given moments.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/event_pump.h"

#include <functional>
#include <map>

/// A clock that moves only when the program waits. Scheduled actions run when their moment is
/// passed in a wait or a call of processEvents().
class SimulatedPump : public EventPump {
public:
    void processEvents() override;
    void pumpWait(int milliseconds) override;
    [[nodiscard]] qint64 milliseconds() const override { return now_; }

    /// Runs `action` once, `milliseconds` from now.
    void after(qint64 milliseconds, std::function<void()> action);
    /// Time that each call of processEvents() takes; keeps polling loops without a wait finite.
    void setEventCost(int milliseconds) { eventCost_ = milliseconds; }
    [[nodiscard]] int nrOfWaits() const { return nrOfWaits_; }

private:
    void runDue();

    qint64 now_ = 0;
    int eventCost_ = 0;
    int nrOfWaits_ = 0;
    std::multimap<qint64, std::function<void()>> actions_;
};
