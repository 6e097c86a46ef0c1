// The journal of a run that has ended, and operations on runs that were recorded before: recover,
// go on, replay.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/messages.h"
#include "base/paths.h"
#include "base/plain_file.h"
#include "run/loop/status_text.h"
#include "run/replay/journal_description.h"
#include "run/replay/saved_run.h"
#include "run/session/run_session.h"

namespace {

bool hasFolderOfItsOwn(const QString& results, const QString& ofTheRun) {
    const QString fault = replayFolderFault(results, ofTheRun);
    if (!fault.isEmpty())
        showWarning("ERROR: " + fault);
    return fault.isEmpty();
}

/// The question whether to save the run in memory comes before a journal is opened: it may be that
/// of this very run, which goes when the run is saved. True, after an information, when it went.
bool wentWhenSaved(const QString& journal, bool wasThere) {
    const bool went = wasThere && !fileExists(journal);
    if (went)
        showModelessInformation(
            QStringLiteral("INFO: The run of the journal \"%1\" is saved now, and the journal was "
                           "deleted: there is nothing to play.")
                .arg(journal));
    return went;
}

} // namespace

JournalEnding RunSession::journalEnding() const {
    if (!report.savedCompletely)
        return JournalEnding::Unfinished;
    return keepsJournals ? JournalEnding::Kept : JournalEnding::Removed;
}

void RunSession::endJournal(bool runDone) {
    const bool holdsData = runDone && report.currentVolume >= 0;
    const JournalEnding ending = holdsData ? journalEnding() : JournalEnding::Removed;
    report.onlyInMemory = ending == JournalEnding::Unfinished && !journal.holdsRun();
    if (report.onlyInMemory)
        showModelessWarning("WARNING: This run is only in memory, since its journal does not hold "
                            "all volumes. You will be asked once more whether to save it: before "
                            "the next run, or when the program ends.");
    else if (ending == JournalEnding::Unfinished)
        showModelessInformation(
            QStringLiteral("INFO: All volumes of this run are in its journal \"%1\". \"Recover "
                           "Run...\" in the menu File saves the run from there.")
                .arg(journal.path()));
    brokenOffJournal_ = report.onlyInMemory ? journal.path() : QString();
    journal.end(ending);
}

QStringList RunSession::unfinishedJournals() const {
    QStringList journals = journal.list().journals();
    journals.removeIf(journalIsInUse);
    return journals;
}

void RunSession::endPlayedJournal(const JournalRun& source, const QString& path) {
    if (!source.allPlayed())
        return;
    const JournalScanResult scan = source.readSoFar();
    const QString loss =
        lossText(path, scan, report.currentVolume + 1, source.head().project.size());
    if (!loss.isEmpty()) {
        showModelessWarning(loss);
        if (report.savedCompletely)
            journal.list().remove(path);
        return;
    }
    journal.endPlayed(path, scan.goodBytes, journalEnding());
}

bool RunSession::playJournal(const PlayOptions& options, PlayPurpose purpose) {
    if (!phase.isIdle())
        return false;
    const bool wasThere = fileExists(options.path);
    if (!mayLeaveRun() || wentWhenSaved(options.path, wasThere))
        return false;
    JournalRun source(options, purpose, listeners);
    if (!source.open() || (purpose == PlayPurpose::Replay &&
                           !hasFolderOfItsOwn(options.targetFolder, source.head().targetFolder)))
        return false;
    if (purpose == PlayPurpose::GoOn)
        source.setContinuation(makeReader, journal);
    return inPhase(Phase::Preparing, [&] {
        settings.settingsFilePath =
            options.settingsFile.isEmpty() ? source.head().settings.path : options.settingsFile;
        const bool done = startRun(source);
        // The settings file still names the folder that it did.
        settings.TargetFolder = source.head().targetFolder;
        if (!done && purpose != PlayPurpose::Replay)
            showModelessInformation(
                QStringLiteral("INFO: The run is still in its journal \"%1\".").arg(options.path));
        if (purpose == PlayPurpose::GoOn && source.allPlayed())
            endJournal(done);
        else if (purpose == PlayPurpose::GoOn)
            journal.end(JournalEnding::Unfinished); // it holds more than was played
        else if (purpose == PlayPurpose::Recover && done && report.currentVolume >= 0)
            endPlayedJournal(source, options.path);
        fitModel(done);
        return done;
    });
}

bool RunSession::playSavedRun(const PlayOptions& options, bool isOwn) {
    SavedRun source(options, isOwn);
    return phase.isIdle() && mayLeaveRun() && source.open() &&
           hasFolderOfItsOwn(options.targetFolder, paths::folderWithSlash(options.path)) &&
           inPhase(Phase::Preparing, [&] {
               settings.settingsFilePath = options.settingsFile;
               const bool done = startRun(source);
               fitModel(done);
               return done;
           });
}
