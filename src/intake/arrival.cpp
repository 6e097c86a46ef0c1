// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/arrival.h"

#include <QFile>
#include <QFileInfo>

bool waitForFile(const QString& fileName, qint64 size, bool atLeast) {
    if (fileName.isEmpty())
        return false;
    // Size and kind cost one look at the folder entry, an open more; most polls end here. Anything
    // but a plain file is no image, and opening it may block.
    const QFileInfo info(fileName);
    if (!info.isFile() || (atLeast ? info.size() < size : info.size() != size))
        return false;
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly | QIODevice::Unbuffered);
}

QString awaitFile(const ExpectedFile& expected, const WaitTimes& times, EventPump& pump) {
    const StopWatch watch(pump);
    for (;;) {
        for (const QString& name : expected.names) {
            if (!waitForFile(name, expected.size, expected.atLeast))
                continue;
            pump.pumpWait(times.settleMilliseconds);
            return name;
        }
        if (watch.elapsed() > times.timeOutMilliseconds)
            return {};
        pump.pumpWait(times.pollMilliseconds);
    }
}
