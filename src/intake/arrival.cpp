// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/arrival.h"

#include "base/paths.h"

#include <QFile>
#include <filesystem>

namespace {

bool fits(const FileStamp& stamp, qint64 size, bool atLeast) {
    return atLeast ? stamp.size >= size : stamp.size == size;
}

QStringList foldersOf(const QStringList& names) {
    QStringList folders;
    for (const QString& name : names)
        folders << paths::folderWithSlash(name);
    folders.removeDuplicates();
    return folders;
}

/// Lists the folders and discards the names: a network mount then asks the server again.
void readFolders(const QStringList& folders) {
    for (const QString& folder : folders) {
        std::error_code error;
        std::filesystem::directory_iterator entry(QFile::encodeName(folder).toStdString(), error);
        while (!error && entry != std::filesystem::directory_iterator())
            entry.increment(error);
    }
}

} // namespace

bool waitForFile(const QString& fileName, qint64 size, bool atLeast) {
    const auto stamp = fileStamp(fileName);
    return stamp && fits(*stamp, size, atLeast);
}

/// The pauses between the rounds of one wait.
class ArrivalWatch::Polls {
public:
    Polls(ArrivalWatch& watch, const QStringList& names, int pollMilliseconds)
        : watch_(watch), names_(names), pollMilliseconds_(pollMilliseconds),
          listing_(watch.pump_, pollMilliseconds) {}

    /// A change may be the first of several, of which not every system reports the others: it is
    /// followed by rounds at a short interval.
    void next(qint64 waitedMilliseconds) {
        constexpr int quickMilliseconds = 10;
        const bool quick = quickRounds_ > 0;
        if (watch_.pause(names_, quick ? quickMilliseconds : pollMilliseconds_))
            quickRounds_ = pollMilliseconds_ / quickMilliseconds;
        else if (quick)
            --quickRounds_;
        constexpr qint64 patienceMilliseconds = 1000;
        if (waitedMilliseconds >= patienceMilliseconds)
            listing_.whenDue([this] { readFolders(foldersOf(names_)); });
    }

private:
    ArrivalWatch& watch_;
    const QStringList& names_;
    int pollMilliseconds_;
    int quickRounds_ = 0;
    FolderPace listing_;
};

bool ArrivalWatch::pause(const QStringList& names, int milliseconds) {
    constexpr qint64 leastPause = 2;
    const qint64 start = pump_.milliseconds();
    // What the looks since the last pause took. A millisecond may only be a tick of the clock.
    const qint64 lookTime = start - pauseEnd_ - 1;
    // A file is often created under another name and renamed at once: of two changes in a row the
    // second is not held up.
    const qint64 rest = std::max(lastWasShort_ ? leastPause : 0, lookTime);
    const qint64 least = std::min(qint64(milliseconds), rest);
    const bool changed = pump_.pumpWaitForChange(milliseconds, foldersOf(names));
    const qint64 left = start + least - pump_.milliseconds();
    if (changed && left > 0)
        pump_.pumpWait(int(left));
    pauseEnd_ = pump_.milliseconds();
    lastWasShort_ = pauseEnd_ - start < leastPause;
    return changed;
}

ArrivedFile ArrivalWatch::await(const ExpectedFile& expected, const WaitTimes& times,
                                const FollowingFiles& following) {
    const StopWatch watch(pump_);
    pauseEnd_ = pump_.milliseconds();
    Polls polls(*this, expected.names, times.pollMilliseconds);
    for (;;) {
        // Taken before the look: a box that is answered late holds up the events, and the file may
        // have come meanwhile.
        const bool timeIsUp = watch.elapsed() > times.timeOutMilliseconds;
        bool unsettled = false;
        for (const QString& name : expected.names) {
            const auto found = fileStamp(name);
            if (!found || !fits(*found, expected.size, expected.atLeast))
                continue;
            const qint64 noticedAt = unchangedSince(name, *found);
            if (expected.keepsGrowing || times.settleMilliseconds == 0) {
                pump_.pumpWait(times.settleMilliseconds);
                return {name, noticedAt};
            }
            if (settles({expected, following}, name, *found, noticedAt + times.settleMilliseconds))
                return {name, noticedAt};
            unsettled = true;
        }
        if (pump_.waitsGivenUp() || timeIsUp)
            return {};
        // A file that changes is tested again without a pause: its settling time was one.
        if (!unsettled)
            polls.next(watch.elapsed());
    }
}

qint64 ArrivalWatch::unchangedSince(const QString& name, const FileStamp& stamp) const {
    const auto seen = ahead_.find(name);
    const bool unchanged = seen != ahead_.end() && seen->second.stamp == stamp;
    return unchanged ? seen->second.since : pump_.milliseconds();
}

// False as soon as the file is seen to have changed.
bool ArrivalWatch::settles(const Awaited& awaited, const QString& name, const FileStamp& stamp,
                           qint64 end) {
    qint64 left = end - pump_.milliseconds();
    if (left <= 0) { // it has settled together with the file before
        pump_.processEvents();
        return true;
    }
    for (; left > 0 && !pump_.waitsGivenUp(); left = end - pump_.milliseconds()) {
        lookAhead(awaited);
        if (pause(awaited.file.names, int(left)) && fileStamp(name) != stamp)
            return false;
    }
    return fileStamp(name) == stamp;
}

// Up to the first file that has not come.
void ArrivalWatch::lookAhead(const Awaited& awaited) {
    std::map<QString, Seen> ahead;
    bool found = bool(awaited.following);
    for (int step = 0; found; ++step) {
        found = false;
        for (const QString& name : awaited.following(step)) {
            const auto stamp = fileStamp(name);
            if (!stamp || !fits(*stamp, awaited.file.size, awaited.file.atLeast))
                continue;
            ahead[name] = {*stamp, unchangedSince(name, *stamp)};
            found = true;
            break;
        }
    }
    ahead_ = std::move(ahead);
}
