// The one way in which the program waits: events are processed, a clock is looked at.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtGlobal>

/// Processes interface events and tells the time. A test counts simulated milliseconds instead.
class EventPump {
public:
    virtual ~EventPump() = default;
    /// Handles all pending events and returns.
    virtual void processEvents() = 0;
    /// Handles events for this long. Nothing in the program waits in any other way during a run.
    virtual void pumpWait(int milliseconds) = 0;
    /// Milliseconds since an arbitrary origin, never going back.
    [[nodiscard]] virtual qint64 milliseconds() const = 0;
};

/// The pump of the running program. It sleeps between events instead of spinning, so that a wait
/// costs next to no processor time.
class QtEventPump : public EventPump {
public:
    void processEvents() override;
    void pumpWait(int milliseconds) override;
    [[nodiscard]] qint64 milliseconds() const override;
};

/// Time since its start or last restart, in milliseconds of a pump's clock.
class StopWatch {
public:
    explicit StopWatch(const EventPump& pump) : pump_(&pump), start_(pump.milliseconds()) {}
    [[nodiscard]] qint64 elapsed() const { return pump_->milliseconds() - start_; }
    void restart() { start_ = pump_->milliseconds(); }

private:
    const EventPump* pump_;
    qint64 start_;
};
