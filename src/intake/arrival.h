// Waiting for the files of a scanner, which doesn't announce them.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/event_pump.h"
#include "base/plain_file.h"

#include <QString>
#include <QStringList>
#include <algorithm>
#include <functional>
#include <map>

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

/// Spaces out the looks at a folder, so that they take at most a tenth of the time: listing many
/// files on a slow mount must not freeze the window.
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

/// The names, of which one will exist, of the first, second, ... file behind an awaited one; empty
/// behind the last file of a volume. Their sizes have to pass the same test.
using FollowingFiles = std::function<QStringList(int step)>;

/// The waits of one reader. Between two looks it sleeps until the folder changes, if the system
/// reports that, or until the next poll.
class ArrivalWatch {
public:
    explicit ArrivalWatch(EventPump& pump) : pump_(pump), pauseEnd_(pump.milliseconds()) {}

    /// Blocks, processing events, until one of the names has passed the arrival test and the size
    /// and times of the file have not changed for the settling time: a copy may be created at its
    /// full size and filled later. A change that is told begins the settling anew at once. The
    /// result has no name on a time-out or when the pump gives up waiting.
    ///
    /// While a file settles, those that follow settle too, as far as they have come: what has held
    /// still for long enough then is not waited for again, neither by this nor by the next call.
    ///
    /// After one second the folder is listed in each poll, since a network mount may have cached
    /// that a file is missing.
    [[nodiscard]] ArrivedFile await(const ExpectedFile& expected, const WaitTimes& times,
                                    const FollowingFiles& following = {});
    /// Sleeps for this long, or until the folders of the files change; true when they did. Where
    /// changes come quickly it returns a little after them: a file that grows all the time is
    /// looked at no more than twice in 2 milliseconds, and looking takes at most half of the time.
    bool pause(const QStringList& names, int milliseconds);

private:
    /// When a file got the stamp that it still has.
    struct Seen {
        FileStamp stamp;
        qint64 since = 0; ///< milliseconds of the pump
    };
    /// What one call waits for.
    struct Awaited {
        const ExpectedFile& file;
        const FollowingFiles& following;
    };
    class Polls;

    [[nodiscard]] qint64 unchangedSince(const QString& name, const FileStamp& stamp) const;
    [[nodiscard]] bool settles(const Awaited& awaited, const QString& name, const FileStamp& stamp,
                               qint64 end);
    void lookAhead(const Awaited& awaited);

    EventPump& pump_;
    qint64 pauseEnd_; ///< the last one's, in milliseconds of the pump
    bool lastWasShort_ = false;
    std::map<QString, Seen> ahead_;
};
