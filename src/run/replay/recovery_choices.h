// Which unfinished runs are offered, what may be done with them, and the texts about them.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/replay/journal_description.h"
#include "run/replay/played_run.h"

#include <QStringList>
#include <vector>

/// Those of the journals that can be read and whose runs are not saved, in the same order.
[[nodiscard]] std::vector<JournalDescription> offeredJournals(const QStringList& journals);

/// What the operator may do with a journal.
struct RecoveryChoices {
    bool recover = false; ///< there is a volume, and the results are not saved
    bool goOn = false;    ///< further volumes may come
};
[[nodiscard]] RecoveryChoices recoveryChoices(const JournalDescription& journal);

/// A row of the list: run, local date and time of its start, time of the latest volume, "87 of
/// 120", folder of the results.
[[nodiscard]] QStringList recoveryColumns(const JournalDescription& journal);

/// How the run ended, what of it is damaged, where the journal and the settings file are. `now` in
/// milliseconds since 1970, UTC.
[[nodiscard]] QString recoveryText(const JournalDescription& journal, qint64 now);

/// Asks whether the run may replace a project of its name that was written into `targetFolder`
/// after its latest volume, such as that of a second measurement. Empty without such a project.
[[nodiscard]] QString replacementQuestion(const JournalDescription& journal,
                                          const QString& targetFolder);

/// With the results in `targetFolder`; in the run's own folder when it is empty or just that.
[[nodiscard]] PlayOptions recoveryOptions(const JournalDescription& journal,
                                          const QString& targetFolder);
