// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/loop/status_text.h"

#include "stats/thresholds.h"

namespace {

QString bodyStart(int fontSize) {
    return QStringLiteral("<body style=\"font-size:%1pt\">").arg(fontSize);
}

QString bold(const QString& text) {
    return "<b>" + text + "</b>";
}

QString seconds(qint64 milliseconds) {
    return QString::number(double(milliseconds) / 1000.0, 'f', 1);
}

// "<b>t</b> > <b>3</b>": which statistic passes which threshold.
QString thresholdPart(const RunState& state, const StatisticalMaps& maps) {
    return thresholdPrefix(maps) + bold(QString::number(double(state.thresholds.Threshold)));
}

QString overlayPart(const RunState& state) {
    if (state.overlayVolumeMode == 0)
        return "<br>OverlayOnVolume: First";
    return state.overlayAfterPreprocessing ? "<br>OverlayOnVolume: Current-AfterPP"
                                           : "<br>OverlayOnVolume: Current-BeforePP";
}

} // namespace

QString processingText(int fontSize, const QString& settingsFileName) {
    return bodyStart(fontSize) + " Current settings file: \"" +
           bold(settingsFileName.toHtmlEscaped()) + "\".<br><br>Processing...<br></body>";
}

QString volumeStatusText(const RunState& state, const RunSettings& settings,
                         const StatisticalMaps& maps, const CycleTimes& times, int volumeIndex,
                         qint64 runMilliseconds) {
    const bool last = volumeIndex + 1 >= settings.nrOfAnalysedVolumes();
    return bodyStart(state.logFontSize) +
           QStringLiteral(" volume <b>%1 (%2)</b>,  elapsed time: ")
               .arg(volumeIndex + 1)
               .arg(settings.NrOfVolumesToSkip + 1 + volumeIndex) +
           bold(seconds(runMilliseconds)) + " secs,  " + thresholdPart(state, maps) +
           QStringLiteral("<br><br>ReadVolTime: <b>%1</b> ms   FeedbackTime: <b>%2</b> ms<br>"
                          "FullVolTime: <b>%3</b> ms   VolWaitTime: <b>%4</b> ms<br>"
                          "StartOffset: <b>%5</b> sec")
               .arg(times.readVolTime)
               .arg(times.feedbackTime)
               .arg(times.fullVolTime)
               .arg(times.volWaitTime)
               .arg(state.startOffsetSeconds) +
           overlayPart(state) + (last ? "<br> Ready.<br></body>" : "</body>");
}

QString savingTextHead(const RunState& state, const StatisticalMaps& maps, int volumeIndex,
                       qint64 runMilliseconds) {
    return bodyStart(state.logFontSize) + " volume " + bold(QString::number(volumeIndex)) +
           ",  elapsed time: " + bold(seconds(runMilliseconds)) + " secs,  " +
           thresholdPart(state, maps) + "<br>";
}

QString betweenRunsText(const RunState& state, const StatisticalMaps& maps) {
    return singleRunPanelText(state.currentVolume + 1, double(state.elapsedRunTime) / 1000.0,
                              thresholdText(maps, state.thresholds));
}

QString reloadingText(int fontSize, const QString& settingsFileName, const QString& projectName) {
    return bodyStart(fontSize) + " Current settings file: \"" +
           bold(settingsFileName.toHtmlEscaped()) + "\".<br><br> Loading project \"" +
           bold(projectName.toHtmlEscaped()) + "\" from disk....<br></body>";
}

QString reloadedText(const QString& settingsFileName, const QString& projectName) {
    // This one text has a size of its own.
    constexpr int reloadedFontSize = 13;
    return bodyStart(reloadedFontSize) + " Current settings file: \"" +
           bold(settingsFileName.toHtmlEscaped()) + "\".<br><br> Project \"" +
           bold(projectName.toHtmlEscaped()) + "\" loaded from disk.<br><br> Ready<br></body>";
}
