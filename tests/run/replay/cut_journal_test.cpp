// A journal that ends anywhere is what a crash leaves there; so all places can be tried.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/journal/journal_scan.h"
#include "run/replay/crash_trial.h"

TEST(CutJournal, GivesTheRunUpToThere) {
    for (const TrialKind& kind : {trialKinds[0], trialKinds[1]}) {
        CrashTrial trial(kind);
        trial.keepsJournals = true;
        trial.run();
        const QString kept = trial.path("kept.vcj");
        ASSERT_TRUE(QFile::copy(trial.journals().value(0), kept));
        (void)trial.takeResults();
        std::vector<qint64> ends;
        JournalCursor cursor(kept);
        for (JournalRecord record; cursor.next(record);)
            ends.push_back(cursor.goodBytes());
        trial.keepsJournals = false;
        // From before the first analysed volume on; VELO_TRIAL_CUTS=1 cuts at every record.
        const auto step = size_t(numberFrom("VELO_TRIAL_CUTS", 5));
        int round = 0;
        for (size_t record = 2; record < ends.size(); record += step, ++round) {
            SCOPED_TRACE(record);
            const QString journal = trial.path("results/cut.vcj");
            ASSERT_TRUE(QDir().mkpath(trial.path("results")) && QFile::copy(kept, journal) &&
                        QFile::resize(journal, ends[record] - round % 2));
            trial.expectComesBack(journal, round % 3 == 2);
        }
    }
}
