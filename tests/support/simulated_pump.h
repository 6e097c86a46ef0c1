// Simulated time: waits return at once, and actions run at given times.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/event_pump.h"

#include <functional>
#include <map>

/// A clock that moves only when the program waits. Scheduled actions run when a wait or
/// processEvents() passes their time.
class SimulatedPump : public EventPump {
public:
    void processEvents() override;
    void pumpWait(int milliseconds) override;
    bool pumpWaitForChange(int milliseconds, const QStringList& folders) override;
    [[nodiscard]] qint64 milliseconds() const override { return now_; }

    /// Runs `action` once, `milliseconds` from now.
    void after(qint64 milliseconds, std::function<void()> action);
    /// Time that each call of processEvents() takes.
    void setEventCost(int milliseconds) { eventCost_ = milliseconds; }
    /// Simulates a change in the watched folders: the current wait ends, or the next one at once.
    void changeFolders() { changed_ = true; }
    /// Of the last wait for a change.
    [[nodiscard]] QStringList watchedFolders() const { return watchedFolders_; }
    [[nodiscard]] int nrOfWaits() const { return nrOfWaits_; }

private:
    void runDue();
    void waitUnless(int milliseconds, const bool& done);

    bool changed_ = false;
    QStringList watchedFolders_;
    qint64 now_ = 0;
    int nrOfWaits_ = 0;
    int eventCost_ = 0;
    std::multimap<qint64, std::function<void()>> actions_;
};
