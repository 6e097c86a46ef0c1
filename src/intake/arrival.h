// Waiting for the files of a scanner, which doesn't announce them.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/event_pump.h"

#include <QString>
#include <QStringList>
#include <algorithm>

/// The arrival test. True when the name is not empty, the file exists, can be opened for reading,
/// and holds at least `size` bytes, or exactly that many without `atLeast`.
[[nodiscard]] bool waitForFile(const QString& fileName, qint64 size, bool atLeast);

/// An awaited file. It may have one of several names, all of which are tested in each round.
struct ExpectedFile {
    QStringList names;
    qint64 size = 0;
    bool atLeast = true;
    /// The file keeps growing after the awaited part has arrived, as one file for a whole run does:
    /// its size and times never settle.
    bool keepsGrowing = false;
};

struct WaitTimes {
    int timeOutMilliseconds = 0;
    int pollMilliseconds = 100;  ///< from one round of tests to the next
    int settleMilliseconds = 10; ///< from the arrival to the reading
};

/// Looking at a folder of many files on a slow mount must not freeze the window: this spaces the
/// looks out, so that they take at most a tenth of the time.
class FolderPace {
public:
    /// `leastRest`: milliseconds from one look to the next at least.
    explicit FolderPace(const EventPump& clock, qint64 leastRest = 0)
        : clock_(clock), leastRest_(leastRest) {}

    /// Calls `look` if it is due.
    template<typename Look> void whenDue(const Look& look) {
        constexpr qint64 restPerLook = 9;
        const qint64 start = clock_.milliseconds();
        if (start < next_)
            return;
        look();
        const qint64 end = clock_.milliseconds();
        next_ = end + std::max(leastRest_, restPerLook * (end - start));
    }

private:
    const EventPump& clock_;
    qint64 leastRest_;
    qint64 next_ = 0;
};

struct ArrivedFile {
    QString name;         ///< empty when none came
    qint64 noticedAt = 0; ///< milliseconds of the pump: when it was seen, before it settled
};

/// Blocks, processing events, until one of the names has passed the arrival test and the size and
/// times of the file have not changed for the settling time: a copy may be created at its full size
/// and filled later. The result has no name on a time-out or when the pump gives up waiting.
///
/// A change of the folder, if the system reports it, starts the next round early. After one second
/// the folder is listed in each round, since a network mount may have cached that a file is
/// missing.
[[nodiscard]] ArrivedFile awaitFile(const ExpectedFile& expected, const WaitTimes& times,
                                    EventPump& pump);
