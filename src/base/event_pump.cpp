// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/event_pump.h"

#include "base/folder_watch.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTimer>
#include <utility>

namespace {

const QElapsedTimer& programClock() {
    static const QElapsedTimer clock = [] {
        QElapsedTimer timer;
        timer.start();
        return timer;
    }();
    return clock;
}

} // namespace

QtEventPump::QtEventPump() = default;
QtEventPump::~QtEventPump() = default;

void QtEventPump::processEvents() {
    const bool nested = std::exchange(inEvents_, true);
    const qint64 start = microseconds();
    QCoreApplication::processEvents();
    if (nested)
        return;
    inEvents_ = false;
    eventTime_ += microseconds() - start;
}

void QtEventPump::pumpWait(int milliseconds) {
    pumpUntil(milliseconds, false);
}

bool QtEventPump::pumpWaitForChange(int milliseconds, const QStringList& folders) {
    if (!watch_)
        watch_ = makeFolderWatch([this] { changed_ = true; });
    watch_->watch(folders);
    pumpUntil(milliseconds, changed_);
    return std::exchange(changed_, false);
}

void QtEventPump::pumpUntil(int milliseconds, const bool& done) {
    QTimer wakeUp;
    wakeUp.setTimerType(Qt::PreciseTimer);
    wakeUp.setSingleShot(true);
    wakeUp.start(milliseconds);
    const qint64 end = this->milliseconds() + milliseconds;
    processEvents();
    while (!done && !waitsGivenUp() && this->milliseconds() < end && wakeUp.isActive())
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
    QCoreApplication::processEvents();
}

qint64 QtEventPump::milliseconds() const {
    return programClock().elapsed();
}

qint64 QtEventPump::microseconds() const {
    return programClock().nsecsElapsed() / 1000;
}
