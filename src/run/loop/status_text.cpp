// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/loop/status_text.h"

#include "run/document/timing_table.h"
#include "stats/thresholds.h"

namespace {

QString bodyStart(int fontSize) {
    return QStringLiteral("<body style=\"font-size:%1pt\">").arg(fontSize);
}

QString bold(const QString& text) {
    return "<b>" + text + "</b>";
}

// Up to the name; the closing quote is the caller's.
QString settingsFileHead(int fontSize, const QString& settingsFileName) {
    return bodyStart(fontSize) + " Current settings file: \"" +
           bold(settingsFileName.toHtmlEscaped());
}

QString seconds(qint64 milliseconds) {
    return QString::number(double(milliseconds) / 1000.0, 'f', 1);
}

// What a plug-in's values are is its own matter: no statistic, no probability.
const QString pluginMapPrefix = "<b>map</b> > ";

// "<b>t</b> > <b>3</b>": which statistic passes which threshold.
QString thresholdPart(const OperatorRequests& requests, const StatisticalMaps& maps) {
    return (requests.pluginMaps.shown ? pluginMapPrefix : thresholdPrefix(maps)) +
           bold(QString::number(double(requests.thresholds.Threshold)));
}

QString overlayPart(const OperatorRequests& requests) {
    if (requests.overlayVolumeMode == 0)
        return "<br>OverlayOnVolume: First";
    return requests.overlayAfterPreprocessing ? "<br>OverlayOnVolume: Current-AfterPP"
                                              : "<br>OverlayOnVolume: Current-BeforePP";
}

// Nothing as long as no plug-in runs.
QString pluginPart(const RunReport& report) {
    if (report.times.pluginTime < 0)
        return {};
    const QString time =
        QStringLiteral("<br>PluginTime: <b>%1</b> ms").arg(report.times.pluginTime);
    return report.slowPlugin.isEmpty()
               ? time
               : time + "   " +
                     bold(report.slowPlugin.toHtmlEscaped() + " took more than half of the TR");
}

} // namespace

QString processingText(int fontSize, const QString& settingsFileName) {
    return settingsFileHead(fontSize, settingsFileName) + "\".<br><br>Processing...<br></body>";
}

QString memoryNeedText(int fontSize, const QString& settingsFileName, const QString& need,
                       const QString& available, bool noneForPostprocessing) {
    const QString told =
        QStringLiteral("<br>This run needs %1 of the %2 of memory that are free.<br>%3</body>")
            .arg(bold(need), available,
                 noneForPostprocessing
                     ? QStringLiteral("Post-processing will need more than is left.<br>")
                     : QString());
    return processingText(fontSize, settingsFileName).replace("</body>", told);
}

QString offerText(int fontSize, const QString& settingsFileName) {
    return settingsFileHead(fontSize, settingsFileName) +
           "\".<br><br>Click the \"<b>Record</b>\" button to start processing.<br></body>";
}

QString waitingText(int fontSize, const QString& settingsFileName) {
    return settingsFileHead(fontSize, settingsFileName) +
           "\" not available.<br><br>Waiting...<br></body>";
}

QString finishedText(int fontSize, const QString& settingsFileName, const QString& title,
                     bool savedCompletely) {
    return settingsFileHead(fontSize, settingsFileName) + "\".<br><br>" + title.toHtmlEscaped() +
           "<br><br>Processing completed.<br>" +
           (savedCompletely ? "" : "Recorded data <b>not saved completely</b>.<br>") +
           "Ready.<br></body>";
}

QString motionPart(int volumesWithoutMotion) {
    const int count = volumesWithoutMotion;
    return count == 0
               ? QString()
               : "<br>" + bold(QStringLiteral("The motion of %1 was not found")
                                   .arg(count == 1 ? QStringLiteral("1 volume")
                                                   : QStringLiteral("%1 volumes").arg(count)));
}

QString timingPart(const VolumeLedger& ledger) {
    QString text;
    for (const QString& warning : timingWarnings(ledger))
        text += "<br>" + bold(warning);
    return text;
}

// Warnings come second: a small panel shows the first lines only.
QString volumeStatusText(const RunReport& report, const OperatorRequests& requests,
                         const RunSettings& settings, const QtCortivoDoc& document) {
    const int volume = report.currentVolume;
    const bool last = volume + 1 >= settings.nrOfAnalysedVolumes();
    return bodyStart(requests.logFontSize) +
           QStringLiteral(" volume <b>%1 (%2)</b>,  elapsed time: ")
               .arg(volume + 1)
               .arg(settings.NrOfVolumesToSkip + 1 + volume) +
           bold(seconds(report.elapsedRunTime)) + " secs,  " +
           thresholdPart(requests, document.maps) + motionPart(report.volumesWithoutMotion) +
           timingPart(document.ledger) +
           QStringLiteral("<br><br>ReadVolTime: <b>%1</b> ms   FeedbackTime: <b>%2</b> ms<br>"
                          "FullVolTime: <b>%3</b> ms   VolWaitTime: <b>%4</b> ms<br>"
                          "StartOffset: <b>%5</b> sec")
               .arg(report.times.readVolTime)
               .arg(report.times.feedbackTime)
               .arg(report.times.fullVolTime)
               .arg(report.times.volWaitTime)
               .arg(requests.startOffsetSeconds) +
           overlayPart(requests) + pluginPart(report) +
           (last ? "<br> Ready.<br></body>" : "</body>");
}

QString savingTextHead(const OperatorRequests& requests, const StatisticalMaps& maps,
                       int volumeIndex, qint64 runMilliseconds) {
    return bodyStart(requests.logFontSize) + " volume " + bold(QString::number(volumeIndex)) +
           ",  elapsed time: " + bold(seconds(runMilliseconds)) + " secs,  " +
           thresholdPart(requests, maps) + "<br>";
}

QString betweenRunsText(const RunReport& report, const OperatorRequests& requests,
                        const QtCortivoDoc& document) {
    QString text =
        requests.pluginMaps.shown
            ? pluginMapPrefix + bold(QString::number(double(requests.thresholds.Threshold), 'f', 2))
            : thresholdText(document.maps, requests.thresholds);
    const QString correlation = meanAR1Text(document.wholeRunModel);
    if (!correlation.isEmpty())
        text += "<br>" + correlation;
    if (document.multiRunDocument)
        return multiRunPanelText(text);
    return singleRunPanelText(report.currentVolume + 1, double(report.elapsedRunTime) / 1000.0,
                              text);
}

QString endingText(int fontSize, Phase phase) {
    QString work = " The work at hand is finished first.";
    if (phase == Phase::Recording)
        work = " The run stops with the volume that is awaited now and is saved.";
    if (phase == Phase::Preparing)
        work = " The start of the run ends with its first volume, or when its time-out has passed.";
    return bodyStart(fontSize) + work + "<br><br>The program ends after that.<br></body>";
}

QString pluginEndedText(int fontSize, const QString& pluginName) {
    return bodyStart(fontSize) + " The plug-in \"" + bold(pluginName.toHtmlEscaped()) +
           "\" has ended at its launch.<br>Start the program again before another plug-in can run."
           "<br></body>";
}

QString withPluginEnded(QString panelText, const QString& pluginName, int fontSize) {
    // Texts that the model's part writes have no body.
    panelText.remove("</body>");
    return panelText + (panelText.endsWith("<br>") ? "" : "<br>") +
           pluginEndedText(fontSize, pluginName).remove(bodyStart(fontSize));
}

QString postprocessedText(int fontSize, const QString& projectName, int volumesWithoutMotion) {
    return bodyStart(fontSize) + " Post-processed data saved as \"" +
           bold(projectName.toHtmlEscaped()) + "\"." + motionPart(volumesWithoutMotion) +
           "<br><br> Ready.<br></body>";
}

QString exportedText(int fontSize, const QString& fileName) {
    return bodyStart(fontSize) + " Run exported as \"" + bold(fileName.toHtmlEscaped()) +
           "\".<br><br> Ready.<br></body>";
}

QString reloadingText(int fontSize, const QString& settingsFileName, const QString& projectName) {
    return settingsFileHead(fontSize, settingsFileName) + "\".<br><br> Loading project \"" +
           bold(projectName.toHtmlEscaped()) + "\" from disk....<br></body>";
}

QString reloadedText(const QString& settingsFileName, const QString& projectName) {
    constexpr int reloadedFontSize = 13; // a size of its own
    return settingsFileHead(reloadedFontSize, settingsFileName) + "\".<br><br> Project \"" +
           bold(projectName.toHtmlEscaped()) + "\" loaded from disk.<br><br> Ready<br></body>";
}

QString analysingText(int fontSize, const QString& settingsFileName, const QString& projectName) {
    return settingsFileHead(fontSize, settingsFileName) +
           "\".<br><br> Analyzing multi-run project \"" + bold(projectName.toHtmlEscaped()) +
           "\"....<br></body>";
}

QString analysedText(int fontSize, const QString& settingsFileName, const QString& projectName) {
    return settingsFileHead(fontSize, settingsFileName) + "\".<br><br> Multi-run project \"" +
           bold(projectName.toHtmlEscaped()) + "\" analyzed.<br><br> Ready<br></body>";
}
