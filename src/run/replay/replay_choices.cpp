// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/replay/replay_choices.h"

#include "base/paths.h"
#include "base/plain_file.h"
#include "base/text_reading.h"
#include "run/replay/journal_description.h"
#include "run/replay/run_journal.h"
#include "run/replay/saved_run.h"
#include "run/settings/settings_file.h"
#include "run/settings/settings_paths.h"
#include "volume/fmr_file.h"

#include <QFileInfo>
#include <cmath>

namespace {

QString quoted(const QString& text) {
    return '"' + text + '"';
}

void describeRecordedRun(ReplayableRun& run) {
    const std::optional<JournalDescription> journal = describeJournal(run.path);
    if (!journal) {
        run.fault = noJournalText(run.path);
        return;
    }
    run.name = journal->head.projectName;
    run.folder = journal->head.targetFolder;
    run.keepsSettings = true;
    run.nrOfVolumes = journal->nrOfVolumes;
    run.TR = double(journal->head.project.TR);
    if (run.nrOfVolumes == 0)
        run.fault = "There is no volume in the journal " + quoted(run.path) + ".";
}

void describeSavedRun(ReplayableRun& run, const RunSettings& current) {
    QString text;
    FMRHeader header;
    if (!readTextFile(run.path, text) ||
        parseFMR(text, FMRScope::Inspection, header) != FMRParseResult::Ok) {
        run.fault = quoted(run.path) + " is not a project, or it is damaged.";
        return;
    }
    run.fault = savedRunFault(header, run.path).remove("ERROR: ");
    run.name = paths::withoutExtension(paths::fileName(run.path));
    run.folder = paths::folderWithSlash(run.path);
    run.nrOfVolumes = header.NrOfVolumes;
    run.TR = double(header.TR);
    const QFileInfo ofCurrent(projectFile(current.TargetFolder, current.ProjectName));
    if (ofCurrent.isFile() && ofCurrent == QFileInfo(run.path))
        run.settingsFile = current.settingsFilePath;
}

QString settingsFault(const ReplayableRun& run, const ReplayChoices& choices) {
    if (!choices.ownSettings && choices.settingsFile.isEmpty())
        return "Choose the settings file.";
    if (!choices.ownSettings)
        return fileExists(choices.settingsFile)
                   ? QString()
                   : "The settings file " + quoted(choices.settingsFile) + " does not exist.";
    if (run.keepsSettings || fileExists(run.settingsFile))
        return {};
    return "A project does not hold its settings, and it is not that of the current settings file: "
           "choose its settings file.";
}

QString folderFault(const ReplayableRun& run, const ReplayChoices& choices) {
    const QString folder = typedFolder(choices.targetFolder);
    const QString fault = resultsFolderFault(folder);
    return fault.isEmpty() ? replayFolderFault(folder, run.folder) : fault;
}

QString durationText(double milliseconds) {
    constexpr int secondsPerMinute = 60;
    const int seconds = int(std::lround(milliseconds / 1000.0));
    return QStringLiteral("%1 min %2 s")
        .arg(seconds / secondsPerMinute)
        .arg(seconds % secondsPerMinute);
}

} // namespace

RunSettings settingsOfCurrentFile(RunSettings settings) {
    if (fileExists(settings.settingsFilePath))
        static_cast<void>(readSettingsFile(settings, SettingsUse::Inspection, {}));
    return settings;
}

QString projectOf(const RunSettings& settings) {
    const QString project = projectFile(settings.TargetFolder, settings.ProjectName);
    return fileExists(project) ? project : QString();
}

ReplayableRun describeReplayableRun(const QString& path, const RunSettings& current) {
    ReplayableRun run;
    run.path = paths::withForwardSlashes(path.trimmed());
    const QString extension = '.' + paths::extension(run.path);
    if (run.path.isEmpty())
        run.fault = "Choose a run: its journal (.vcj) or its project (.fmr).";
    else if (!fileExists(run.path))
        run.fault = "The file " + quoted(run.path) + " does not exist.";
    else if (extension == journalExtension)
        describeRecordedRun(run);
    else if (extension == ".fmr")
        describeSavedRun(run, current);
    else
        run.fault = quoted(run.path) + " is neither a journal (.vcj) nor a project (.fmr).";
    return run;
}

QString proposedReplayFolder(const QString& run) {
    const QString folder = paths::folderWithSlash(paths::withForwardSlashes(run.trimmed()));
    return folder.isEmpty() ? QString() : folder + "replay/";
}

ReplayFault findReplayFault(const ReplayableRun& run, const ReplayChoices& choices) {
    if (!run.fault.isEmpty())
        return {ReplayChoice::Run, run.fault};
    if (const QString fault = settingsFault(run, choices); !fault.isEmpty())
        return {ReplayChoice::Settings, fault};
    if (const QString fault = folderFault(run, choices); !fault.isEmpty())
        return {ReplayChoice::Folder, fault};
    return {};
}

QString replayText(const ReplayableRun& run, const ReplayChoices& choices) {
    const QString pace =
        choices.atTR ? QStringLiteral("one every %1 ms (%2)")
                           .arg(QString::number(run.TR), durationText(run.TR * run.nrOfVolumes))
                     : QStringLiteral("as fast as it goes");
    const QString settings = choices.ownSettings ? QStringLiteral("the settings of the run")
                                                 : quoted(paths::fileName(choices.settingsFile));
    return QStringLiteral(
               "The %1 volumes of \"%2\" are analysed again with %3, %4. The results go "
               "into \"%5\" and replace those of an earlier replay there; the run itself "
               "stays as it is.")
        .arg(QString::number(run.nrOfVolumes), run.name, settings, pace,
             typedFolder(choices.targetFolder));
}

PlayOptions replayOptions(const ReplayableRun& run, const ReplayChoices& choices) {
    return {.path = run.path,
            .settingsFile = choices.ownSettings ? run.settingsFile : choices.settingsFile,
            .targetFolder = typedFolder(choices.targetFolder),
            .atTR = choices.atTR};
}
