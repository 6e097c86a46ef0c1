// What a journal holds, for the operator who chooses one.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/journal/journal_scan.h"
#include "run/replay/journal_records.h"

#include <optional>

struct JournalDescription {
    QString path;
    RunHead head;
    int nrOfVolumes = 0;
    qint64 latestArrival = 0; ///< milliseconds since 1970, UTC; 0 without a volume
    bool loopEnded = false;   ///< the run was over: no further volume comes
    bool saved = false;       ///< its results are on disk
    JournalScanResult scan;
};

/// Reads through the journal; nothing when it is none, or when its beginning is damaged. Calls
/// `takePart` after each volume, if it is given, and gives up when that returns false.
[[nodiscard]] std::optional<JournalDescription>
describeJournal(const QString& path, const std::function<bool()>& takePart = {});

/// What could not be read back, for the operator; empty for a journal that is whole or that the end
/// of the program cut off within the record that was being written. `size` of its volumes.
[[nodiscard]] QString lossText(const QString& path, const JournalScanResult& scan, int nrOfVolumes,
                               const VolumeSize& size);
