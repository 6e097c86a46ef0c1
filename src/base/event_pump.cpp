// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/event_pump.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTimer>

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

void QtEventPump::processEvents() {
    QCoreApplication::processEvents();
}

void QtEventPump::pumpWait(int milliseconds) {
    QTimer wakeUp;
    wakeUp.setTimerType(Qt::PreciseTimer);
    wakeUp.setSingleShot(true);
    wakeUp.start(milliseconds);
    const qint64 end = this->milliseconds() + milliseconds;
    while (this->milliseconds() < end && wakeUp.isActive())
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
    QCoreApplication::processEvents();
}

qint64 QtEventPump::milliseconds() const {
    return programClock().elapsed();
}
