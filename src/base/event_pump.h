// The only way the program waits: it processes events and reads a clock.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringList>
#include <memory>

class FolderWatch;

/// Processes interface events and reads the time, which a test simulates.
class EventPump {
public:
    virtual ~EventPump() = default;
    /// Handles all pending events and returns.
    virtual void processEvents() = 0;
    /// Handles events for this long. Nothing in the program waits in any other way during a run.
    virtual void pumpWait(int milliseconds) = 0;
    /// The same, but returns true as soon as something happens to a file in one of the folders, if
    /// the system reports it (base/folder_watch.h). A change since the last wait for the same
    /// folders ends it at once, and so does the first wait for a folder, where files may have come
    /// before. Changes made by other machines on a network mount are not reported, and on some
    /// systems neither is the growth of a file, so the caller has to poll in any case. While a file
    /// grows, one wait after the other ends at once: the caller paces them.
    virtual bool pumpWaitForChange(int milliseconds, const QStringList& folders) {
        static_cast<void>(folders);
        pumpWait(milliseconds);
        return false;
    }
    /// The program is to end: from now on no wait lasts. Whoever waits in a loop looks at
    /// waitsGivenUp() and ends as if nothing would come any more, but without a message.
    void giveUpWaiting() { waitsGivenUp_ = true; }
    [[nodiscard]] bool waitsGivenUp() const { return waitsGivenUp_; }
    /// Milliseconds since an arbitrary origin, never going back.
    [[nodiscard]] virtual qint64 milliseconds() const = 0;
    /// The same clock, finer where there is a finer one.
    [[nodiscard]] virtual qint64 microseconds() const { return 1000 * milliseconds(); }
    /// Microseconds that went so far to events which were pending when a wait or processEvents()
    /// began, as the painting of what was just shown: work, where the rest of a wait is none.
    [[nodiscard]] virtual qint64 eventTime() const { return 0; }

private:
    bool waitsGivenUp_ = false;
};

/// The pump of the running program. It sleeps between events instead of spinning, so that a wait
/// costs next to no processor time.
class QtEventPump : public EventPump {
public:
    QtEventPump();
    ~QtEventPump() override;
    void processEvents() override;
    void pumpWait(int milliseconds) override;
    bool pumpWaitForChange(int milliseconds, const QStringList& folders) override;
    [[nodiscard]] qint64 milliseconds() const override;
    [[nodiscard]] qint64 microseconds() const override;
    [[nodiscard]] qint64 eventTime() const override { return eventTime_; }

private:
    void pumpUntil(int milliseconds, const bool& done);

    std::unique_ptr<FolderWatch> watch_; ///< made at the first wait for a change
    bool changed_ = false;               ///< since the last wait for a change
    qint64 eventTime_ = 0;
    bool inEvents_ = false; ///< whose time counts; events may wait for events in their turn
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
