// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/arrival.h"

#include "base/paths.h"
#include "base/plain_file.h"

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

/// The pauses between the rounds of one wait.
class Pauses {
public:
    Pauses(const QStringList& names, const WaitTimes& times, EventPump& pump)
        : folders_(foldersOf(names)), times_(times), pump_(pump), pace_(pump) {}

    /// A scanner that writes many small files, or one in many pieces, changes the folder all the
    /// time: a change is followed by rounds at this interval before the next one is watched for.
    void next(qint64 waitedMilliseconds) {
        constexpr int quickMilliseconds = 10;
        if (quickPauses_ > 0) {
            --quickPauses_;
            pump_.pumpWait(quickMilliseconds);
            return;
        }
        if (pump_.pumpWaitForChange(times_.pollMilliseconds, folders_))
            quickPauses_ = times_.pollMilliseconds / quickMilliseconds;
        constexpr qint64 patienceMilliseconds = 1000;
        if (waitedMilliseconds >= patienceMilliseconds)
            pace_.whenDue([this] { readFolders(folders_); });
    }

private:
    QStringList folders_;
    WaitTimes times_;
    EventPump& pump_;
    int quickPauses_ = 0;
    FolderPace pace_;
};

} // namespace

bool waitForFile(const QString& fileName, qint64 size, bool atLeast) {
    const auto stamp = fileStamp(fileName);
    return stamp && fits(*stamp, size, atLeast);
}

ArrivedFile awaitFile(const ExpectedFile& expected, const WaitTimes& times, EventPump& pump) {
    const StopWatch watch(pump);
    Pauses pauses(expected.names, times, pump);
    for (;;) {
        // Taken before the look: a box that is answered late holds up the events, and the file may
        // have come meanwhile.
        const bool timeIsUp = watch.elapsed() > times.timeOutMilliseconds;
        bool unsettled = false;
        for (const QString& name : expected.names) {
            const auto found = fileStamp(name);
            if (!found || !fits(*found, expected.size, expected.atLeast))
                continue;
            const qint64 noticedAt = pump.milliseconds();
            pump.pumpWait(times.settleMilliseconds);
            const bool settled = expected.keepsGrowing || times.settleMilliseconds == 0;
            if (settled || fileStamp(name) == found)
                return {name, noticedAt};
            unsettled = true;
        }
        if (pump.waitsGivenUp() || timeIsUp)
            return {};
        // A file that changes is tested again without a pause: its settling time was one.
        if (!unsettled)
            pauses.next(watch.elapsed());
    }
}
