// Waiting for the files of a scanner, which gives no sign of its own.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/event_pump.h"

#include <QString>
#include <QStringList>

/// The arrival test. True when the name is not empty, the file exists, can be opened for reading,
/// and holds at least `size` bytes, or with `atLeast` off exactly that many.
[[nodiscard]] bool waitForFile(const QString& fileName, qint64 size, bool atLeast);

/// What is waited for. Several names stand for one file: all are tested in each round.
struct ExpectedFile {
    QStringList names;
    qint64 size = 0;
    bool atLeast = true;
};

struct WaitTimes {
    int timeOutMilliseconds = 0;
    int pollMilliseconds = 100;  ///< from one round of tests to the next
    int settleMilliseconds = 10; ///< from the arrival to the reading
};

/// Blocks, with events processed, until one of the names passes the arrival test, and then for the
/// settling time. Its name, or an empty string when the time-out has passed before.
[[nodiscard]] QString awaitFile(const ExpectedFile& expected, const WaitTimes& times,
                                EventPump& pump);
