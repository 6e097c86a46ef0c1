// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/loop/region_log_files.h"

#include "base/file_writing.h"
#include "base/messages.h"
#include "base/paths.h"
#include "regions/region_logs.h"
#include "run/loop/finished_run.h"

#include <QDir>

namespace {

void appendRecord(const QString& path, const QByteArray& text, bool& begun, const char* failure) {
    if (appendToLog(path, text, !begun))
        begun = true;
    else
        showModelessWarning(failure);
}

} // namespace

void RegionLogFiles::writeVolume(const VolumeAtHand& hand, const RunSettings& settings,
                                 const OperatorRequests& requests) {
    if (requests.saveRTPs && !hand.played)
        writeRTPFile(hand.document, settings, hand.volume);
    if (requests.saveROITimeCourses)
        writeERTFile(hand.document, hand.volume);
    if (requests.saveROIBetaTimeCourses)
        writeBTCFile(hand.document, hand.volume);
}

void RegionLogFiles::writeRTPFile(const QtCortivoDoc& document, const RunSettings& settings,
                                  int volume) {
    if (!settings.FeedbackTargetFolder.isEmpty())
        QDir().mkpath(settings.FeedbackTargetFolder);
    // Appears whole, since another program reads it as soon as it is there.
    (void)writePolledFile(
        paths::join(settings.FeedbackTargetFolder,
                    QStringLiteral("%1-%2.rtp").arg(settings.projectBaseName).arg(volume + 1)),
        timePointText(document.regions, document.volumeTables.condition(volume)));
}

void RegionLogFiles::writeERTFile(const QtCortivoDoc& document, int volume) {
    const FMRProject& project = document.project;
    const int index = std::min(volume, int(project.volumes.size()) - 1);
    if (index < 0)
        return;
    appendRecord(resultPath(project, "_plots.ert", "xxx.ert"),
                 extendedTimeCourseText(document.regions, index, project.volumes[size_t(index)],
                                        project.size(), !timeCoursesBegun_),
                 timeCoursesBegun_, "ERROR: Can not open extended ROI time course file (.ERT) !");
}

void RegionLogFiles::writeBTCFile(const QtCortivoDoc& document, int volume) {
    appendRecord(resultPath(document.project, "_ROI_betas.btc", "noname_ROI_betas.btc"),
                 betaTimeCourseText(document.regions, document.design, volume, !betasBegun_),
                 betasBegun_, "ERROR: Can not open ROI beta time course file (.BTC) !");
}
