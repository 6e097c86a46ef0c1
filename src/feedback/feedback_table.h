// The feedback of a run as a table: one row for each volume.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "feedback/feedback_levels.h"

#include <QByteArray>

/// A row, with what the subject was given at a volume.
struct FeedbackRow {
    int volume = 0;    ///< from 0; the file counts from 1
    QString condition; ///< name; empty without a protocol
    std::vector<float> regionSignals;
    FeedbackValues values;
    bool levelShown = false;   ///< neither blocked nor suppressed, and a level was drawn
    double milliseconds = 0.0; ///< from the arrival of the volume's last file to the display
};

/// The names of the columns, tab separated: volume, condition, the signal of each region (roi1
/// ...), baseline1, baseline2, relative_level, shown_level1, shown_level2, target1, target2,
/// suppressed, milliseconds. `nrOfRegions` signals; a run whose regions change in number has "n/a"
/// where a region isn't.
[[nodiscard]] QByteArray feedbackTableHead(int nrOfRegions);
/// One line. What was not computed or not shown is "n/a".
[[nodiscard]] QByteArray feedbackTableRow(const FeedbackRow& given, int nrOfRegions);
