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

/// Nothing when the file is no journal, or when its beginning is damaged. Passes over the samples,
/// so that it takes a moment also for a long run; damage in them is found when the run is played.
[[nodiscard]] std::optional<JournalDescription> describeJournal(const QString& path);

/// That the file is none of these, for the operator.
[[nodiscard]] QString noJournalText(const QString& path);

/// What could not be read back, for the operator; empty for a journal that is whole or that the end
/// of the program cut off within the record that was being written. `size` of its volumes.
[[nodiscard]] QString lossText(const QString& path, const JournalScanResult& scan, int nrOfVolumes,
                               const VolumeSize& size);
