// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/replay/played_run.h"

#include "base/messages.h"
#include "base/paths.h"
#include "run/settings/settings_file.h"

#include <QDir>

bool readSettingsForPlaying(RunSettings& settings, const std::function<void()>& stopTimer) {
    RunSettings inspected = settings;
    return readSettingsFile(inspected, SettingsUse::Inspection, stopTimer) &&
           readSettingsFile(settings, SettingsUse::Recorded, stopTimer);
}

bool prepareForPlaying(RunSettings& settings, const PlayOptions& options) {
    settings.ShowGODlgAfterPreparation = false;
    settings.OverlayInplaneData = false;
    settings.pendingOverlayInplane = -1;
    settings.ForceTRDelay = options.atTR;
    settings.forceTRDelayRead = true;
    if (!options.targetFolder.isEmpty()) {
        const QString former = settings.TargetFolder;
        settings.TargetFolder = paths::withTrailingSlash(options.targetFolder);
        if (settings.FeedbackTargetFolder.startsWith(former))
            settings.FeedbackTargetFolder =
                settings.TargetFolder + settings.FeedbackTargetFolder.mid(former.size());
    }
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
