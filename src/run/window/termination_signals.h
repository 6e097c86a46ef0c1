// Requests from outside that the program should end.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <csignal>
#include <functional>
#include <vector>

/// For the whole program: a write to a closed pipe or beyond the limit of a file's size fails,
/// which is told as any failure to write, instead of ending the process.
void ignoreSignalsOfWrites();

/// Calls a function once, from the event loop, after SIGTERM, SIGINT or SIGHUP, or when the session
/// manager asks to save before a log-out. Further requests change nothing. A signal that was
/// ignored before, as by nohup, stays ignored. The destructor restores how the signals were
/// handled. There is one such object at a time; it needs the application object.
///
/// The session manager's request may be delivered while a run's loop is below it on the stack. So
/// the function can't wait for the run, and the manager, which hears no objection, may close the
/// display before the run has been saved.
class TerminationSignals {
public:
    explicit TerminationSignals(std::function<void()> endRequested);
    ~TerminationSignals();
    TerminationSignals(const TerminationSignals&) = delete;
    TerminationSignals& operator=(const TerminationSignals&) = delete;

private:
    struct Handled {
        int signal;
        struct sigaction before;
    };

    void listenToSignals();
    void tell();

    std::function<void()> endRequested_;
    QObject context_; ///< of the connections
    int readEnd_ = -1;
    std::vector<Handled> handled_;
};
