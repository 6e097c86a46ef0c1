// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/replay/recovery_choices.h"

#include "base/paths.h"
#include "base/plain_file.h"
#include "base/text_reading.h"
#include "run/settings/settings_paths.h"
#include "volume/fmr_file.h"

#include <QDateTime>
#include <QFileInfo>

namespace {

constexpr qint64 minute = 60 * 1000; // milliseconds
constexpr qint64 hour = 60 * minute;
constexpr qint64 day = 24 * hour;

QString counted(qint64 count, const char* unit) {
    return QStringLiteral("%1 %2%3 ago").arg(count).arg(unit, count == 1 ? "" : "s");
}

/// A clock that was set back gives negative values.
QString agoText(qint64 milliseconds) {
    if (milliseconds < minute)
        return "less than a minute ago";
    if (milliseconds < hour)
        return counted(milliseconds / minute, "minute");
    if (milliseconds < day)
        return counted(milliseconds / hour, "hour");
    return counted(milliseconds / day, "day");
}

QString localTime(qint64 milliseconds, const char* format) {
    return QDateTime::fromMSecsSinceEpoch(milliseconds).toString(format);
}

QString endingText(const JournalDescription& journal, qint64 now) {
    if (journal.saved)
        return "The results of this run are saved. Its journal was kept to be replayed.";
    const qint64 latest = journal.nrOfVolumes > 0 ? journal.latestArrival : journal.head.startedAt;
    return (journal.loopEnded
                ? QStringLiteral("The run was over, but not yet saved, when the program ended, %1.")
                : QStringLiteral("The run was not over when its journal ended, %1."))
        .arg(agoText(now - latest));
}

QString settingsText(const QString& path) {
    return "Settings file: " + path +
           (fileExists(path) ? "" : " (no longer there; its text is in the journal)");
}

} // namespace

std::vector<JournalDescription> offeredJournals(const QStringList& journals) {
    std::vector<JournalDescription> offered;
    for (const QString& path : journals)
        if (std::optional<JournalDescription> journal = describeJournal(path);
            journal && !journal->saved)
            offered.push_back(*std::move(journal));
    return offered;
}

RecoveryChoices recoveryChoices(const JournalDescription& journal) {
    return {journal.nrOfVolumes > 0 && !journal.saved, !journal.loopEnded};
}

QStringList recoveryColumns(const JournalDescription& journal) {
    return {
        journal.head.projectName, localTime(journal.head.startedAt, "yyyy-MM-dd hh:mm"),
        journal.nrOfVolumes > 0 ? localTime(journal.latestArrival, "hh:mm:ss") : "none",
        QStringLiteral("%1 of %2").arg(journal.nrOfVolumes).arg(journal.head.project.NrOfVolumes),
        journal.head.targetFolder};
}

QString recoveryText(const JournalDescription& journal, qint64 now) {
    QStringList lines{endingText(journal, now), "Journal: " + journal.path,
                      settingsText(journal.head.settings.path)};
    const QString loss =
        lossText(journal.path, journal.scan, journal.nrOfVolumes, journal.head.project.size());
    if (!loss.isEmpty())
        lines.insert(1, loss);
    return lines.join('\n');
}

QString replacementQuestion(const JournalDescription& journal, const QString& targetFolder) {
    const QString folder = typedFolder(targetFolder);
    const QFileInfo project(projectFile(folder, journal.head.projectName));
    const qint64 written = project.lastModified().toMSecsSinceEpoch();
    QString text;
    FMRHeader header;
    if (!project.isFile() || written <= journal.latestArrival ||
        !readTextFile(project.filePath(), text) ||
        parseFMR(text, FMRScope::Inspection, header) != FMRParseResult::Ok)
        return {};
    return QStringLiteral("WARNING: The folder \"%1\" holds results \"%2\" with %3 volumes, "
                          "written on %4, after the latest volume of this run. They would be "
                          "replaced.\n\nDo you want to replace them?")
        .arg(folder, journal.head.projectName)
        .arg(header.NrOfVolumes)
        .arg(localTime(written, "yyyy-MM-dd hh:mm:ss"));
}

PlayOptions recoveryOptions(const JournalDescription& journal, const QString& targetFolder) {
    const QString chosen = typedFolder(targetFolder);
    const bool isOther = chosen != paths::withTrailingSlash(journal.head.targetFolder);
    PlayOptions options;
    options.path = journal.path;
    if (isOther)
        options.targetFolder = chosen;
    return options;
}
