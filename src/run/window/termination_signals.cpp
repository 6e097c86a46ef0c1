// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/window/termination_signals.h"

#include <QGuiApplication>
#include <QSocketNotifier>
#include <atomic>
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

namespace {

// A handler may do next to nothing, so it writes a byte into a pipe that the event loop listens to.
std::atomic<int> writeEnd = -1;
static_assert(std::atomic<int>::is_always_lock_free, "used in a signal handler");

void onSignal(int) {
    const int errorBefore = errno;
    const char byte = 0;
    // The pipe doesn't block: when it is full the request is known already.
    [[maybe_unused]] const ssize_t written = ::write(writeEnd, &byte, 1);
    errno = errorBefore;
}

} // namespace

void ignoreSignalsOfWrites() {
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
}

TerminationSignals::TerminationSignals(std::function<void()> endRequested)
    : endRequested_(std::move(endRequested)) {
    QObject::connect(qApp, &QGuiApplication::commitDataRequest, &context_, [this] { tell(); });
    listenToSignals();
}

// Without a pipe the signals end the process as ever.
void TerminationSignals::listenToSignals() {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0)
        return;
    readEnd_ = ends[0];
    writeEnd = ends[1];
    auto* notifier = new QSocketNotifier(readEnd_, QSocketNotifier::Read, &context_);
    QObject::connect(notifier, &QSocketNotifier::activated, &context_, [this] {
        char bytes[16];
        while (::read(readEnd_, bytes, sizeof(bytes)) > 0) {
        }
        tell();
    });
    struct sigaction action {};
    action.sa_handler = onSignal;
    action.sa_flags = SA_RESTART; // reads and writes of files go on
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        Handled handled{signal, {}};
        if (::sigaction(signal, nullptr, &handled.before) == 0 &&
            handled.before.sa_handler != SIG_IGN && ::sigaction(signal, &action, nullptr) == 0)
            handled_.push_back(handled);
    }
}

TerminationSignals::~TerminationSignals() {
    for (const Handled& handled : handled_)
        ::sigaction(handled.signal, &handled.before, nullptr);
    if (readEnd_ < 0)
        return;
    qDeleteAll(context_.children()); // the notifier goes before its descriptor
    ::close(writeEnd.exchange(-1));
    ::close(readEnd_);
}

void TerminationSignals::tell() {
    if (const auto endRequested = std::exchange(endRequested_, nullptr))
        endRequested();
}
