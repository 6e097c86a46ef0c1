// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/replay/played_run.h"

#include "base/messages.h"
#include "base/paths.h"
#include "run/settings/settings_file.h"

#include <QDir>
#include <QFileInfo>

bool readSettingsForPlaying(RunSettings& settings, const std::function<void()>& stopTimer) {
    RunSettings inspected = settings;
    return readSettingsFile(inspected, SettingsUse::Inspection, stopTimer) &&
           readSettingsFile(settings, SettingsUse::Recorded, stopTimer);
}

QString typedFolder(const QString& text) {
    return paths::withTrailingSlash(paths::withForwardSlashes(text.trimmed()));
}

QString resultsFolderFault(const QString& folder) {
    if (!QDir::isAbsolutePath(folder))
        return "Choose a folder for the results, with its full path.";
    QFileInfo existing(QDir::cleanPath(folder));
    while (!existing.exists() && !existing.isRoot())
        existing.setFile(existing.path());
    return existing.isDir() && existing.isWritable()
               ? QString()
               : QStringLiteral("The folder \"%1\" can not be written. Choose another one.")
                     .arg(folder);
}

QString replayFolderFault(const QString& results, const QString& ofTheRun) {
    const QFileInfo target(results);
    const QFileInfo recorded(ofTheRun);
    const auto path = [](const QFileInfo& folder) {
        return paths::withTrailingSlash(QDir::cleanPath(folder.absoluteFilePath()));
    };
    const bool isOther = !results.isEmpty() && path(target) != path(recorded) &&
                         !(target.exists() && target == recorded);
    return isOther ? QString()
                   : QStringLiteral("The results of a replay would replace those of the run "
                                    "in folder \"%1\". Choose another folder.")
                         .arg(ofTheRun);
}

bool hasTimesOfARun(const FMRHeader& header) {
    constexpr float longestTR = 3600 * 1000; // milliseconds
    constexpr int mostSkipped = 1000000;
    return header.TR >= 1.0f && header.TR <= longestTR && header.NrOfSkippedVolumes >= 0 &&
           header.NrOfSkippedVolumes <= mostSkipped;
}

namespace {

void moveResults(RunSettings& settings, const QString& folder, OutsideFeedback outsideFeedback) {
    const QString former = settings.TargetFolder;
    QString& feedback = settings.FeedbackTargetFolder;
    settings.TargetFolder = paths::withTrailingSlash(folder);
    if (!former.isEmpty() && feedback.startsWith(former))
        feedback = settings.TargetFolder + feedback.mid(former.size());
    else if (outsideFeedback == OutsideFeedback::IntoResults)
        feedback = settings.TargetFolder;
}

} // namespace

bool prepareForPlaying(RunSettings& settings, const PlayOptions& options,
                       OutsideFeedback outsideFeedback) {
    settings.ShowGODlgAfterPreparation = false;
    settings.OverlayInplaneData = false;
    settings.pendingOverlayInplane = -1;
    settings.ForceTRDelay = options.atTR;
    settings.forceTRDelayRead = true;
    if (!options.targetFolder.isEmpty())
        moveResults(settings, options.targetFolder, outsideFeedback);
    if (!settings.TargetFolder.isEmpty() && QDir().mkpath(settings.TargetFolder))
        return true;
    showWarning(QStringLiteral("ERROR: The folder \"%1\" for the results can not be created. "
                               "Choose another one.")
                    .arg(settings.TargetFolder));
    return false;
}

void restoreHeader(FMRProject& project, const FMRHeader& recorded) {
    const FMRHeader settled = project;
    static_cast<FMRHeader&>(project) = recorded;
    project.NrOfVolumes = settled.NrOfVolumes;
    project.NrOfSkippedVolumes = settled.NrOfSkippedVolumes;
    project.Prefix = settled.Prefix;
    project.LayoutNColumns = settled.LayoutNColumns;
    project.LayoutNRows = settled.LayoutNRows;
}

bool sizesAgree(const RunSettings& settings, const FMRHeader& recorded, const QString& path) {
    const VolumeSize stated{settings.MatrixSizeX, settings.MatrixSizeY, settings.NrOfSlices};
    if (stated == recorded.size())
        return true;
    const auto text = [](const VolumeSize& size) {
        return QStringLiteral("%1 x %2 x %3").arg(size.x).arg(size.y).arg(size.slices);
    };
    showWarning(QStringLiteral("ERROR: The volumes of \"%1\" have %2 voxels, but the settings "
                               "file \"%3\" states %4.")
                    .arg(path, text(recorded.size()), settings.settingsFilePath, text(stated)));
    return false;
}
