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
    /// The scanner goes on writing to the file when what is waited for is there, as it does where
    /// one file holds a run: size and times never hold still.
    bool keepsGrowing = false;
};

struct WaitTimes {
    int timeOutMilliseconds = 0;
    int pollMilliseconds = 100;  ///< from one round of tests to the next
    int settleMilliseconds = 10; ///< from the arrival to the reading
};

/// Blocks, with events processed, until one of the names has passed the arrival test and its size
/// and times have then held still over the settling time: a copy may be made at its full size and
/// filled later. Its name, or an empty string when the time-out has passed before.
///
/// A change of the folder, where the system tells of it, brings the next rounds forward. After a
/// second the folder itself is read in each round, since a network mount may remember that a file
/// was not there.
[[nodiscard]] QString awaitFile(const ExpectedFile& expected, const WaitTimes& times,
                                EventPump& pump);
