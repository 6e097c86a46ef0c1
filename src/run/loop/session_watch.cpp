// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/loop/session_watch.h"

#include <limits>

namespace {

constexpr char settingsExtension[] = ".vco";

/// The two parts of a name that is laid out as `<base>-<number>.<extension>`.
struct RecordingName {
    QString base; ///< up to and including the last "-"
    QString number;
};

std::optional<RecordingName> splitName(const QString& settingsFileName) {
    const qsizetype dot = settingsFileName.lastIndexOf('.');
    const QString stem = dot < 0 ? settingsFileName : settingsFileName.left(dot);
    const qsizetype dash = stem.lastIndexOf('-');
    if (dash < 0)
        return std::nullopt;
    return RecordingName{stem.left(dash + 1), stem.mid(dash + 1)};
}

QString withNumber(const QString& base, qint64 number) {
    return base + QString::number(number) + settingsExtension;
}

} // namespace

QString neighbourName(const QString& settingsFileName, int step) {
    const std::optional<RecordingName> name = splitName(settingsFileName);
    if (!name)
        return {};
    bool isNumber = false;
    const qint64 neighbour = qint64(name->number.toInt(&isNumber)) + step;
    if (!isNumber || neighbour < 0 || neighbour > std::numeric_limits<int>::max())
        return {};
    return withNumber(name->base, neighbour);
}

QString recordingName(const QString& settingsFileName, int number) {
    const std::optional<RecordingName> name = splitName(settingsFileName);
    if (!name || !settingsFileName.contains('.'))
        return {};
    return withNumber(name->base, number);
}

int countRecordings(const QString& folder, const QString& settingsFileName,
                    const FileTest& isFile) {
    if (recordingName(settingsFileName, 1).isEmpty())
        return 0;
    int count = 0;
    while (isFile(folder + recordingName(settingsFileName, count + 1)))
        ++count;
    return count;
}

WatchOutcome lookAtSession(const WatchState& state, const FileTest& isFolder,
                           const FileTest& isFile) {
    WatchOutcome outcome;
    outcome.highestRunNumber = state.highestRunNumber;
    const QString& folder = state.settingsDirectory;
    if (folder.isEmpty() || !isFolder(folder))
        return outcome;

    const auto neighbourExists = [&](int step) {
        const QString name = neighbourName(state.settingsFileName, step);
        return !name.isEmpty() && isFile(folder + name);
    };
    outcome.previousExists = neighbourExists(-1);
    outcome.nextExists = neighbourExists(+1);
    if (state.settingsFileName.isEmpty() || !isFile(folder + state.settingsFileName))
        outcome.action = WatchAction::Wait;
    else if (state.runFinished)
        outcome.action = WatchAction::ShowFinished;
    else if (state.autoStartRun || state.autoStartPending)
        outcome.action = WatchAction::StartRun;
    else
        outcome.action = WatchAction::Offer;
    if (outcome.action == WatchAction::StartRun || !state.autoAdvanceRun)
        return outcome;

    const int found = countRecordings(folder, state.settingsFileName, isFile);
    if (outcome.highestRunNumber == -1)
        outcome.highestRunNumber = found;
    if (found > outcome.highestRunNumber)
        outcome.advanceTo = recordingName(state.settingsFileName, ++outcome.highestRunNumber);
    return outcome;
}

QString offerText(int fontSize, const QString& settingsFileName) {
    return QStringLiteral("<body style=\"font-size:%1pt\"> Current settings file: "
                          "\"<b>%2</b>\".<br><br>Click the \"<b>Record</b>\" button to start "
                          "processing.<br></body>")
        .arg(QString::number(fontSize), settingsFileName.toHtmlEscaped());
}

QString finishedText(int fontSize, const QString& settingsFileName, const QString& title,
                     bool savedCompletely) {
    return QStringLiteral("<body style=\"font-size:%1pt\"> Current settings file: "
                          "\"<b>%2</b>\".<br><br>%3<br><br>Processing completed.<br>%4Ready.<br>"
                          "</body>")
        .arg(QString::number(fontSize), settingsFileName.toHtmlEscaped(), title.toHtmlEscaped(),
             savedCompletely ? "" : "Recorded data <b>not saved completely</b>.<br>");
}

QString waitingText(int fontSize, const QString& settingsFileName) {
    return QStringLiteral("<body style=\"font-size:%1pt\"> Current settings file: "
                          "\"<b>%2</b>\" not available.<br><br>Waiting...<br></body>")
        .arg(QString::number(fontSize), settingsFileName.toHtmlEscaped());
}

QString recordingNameFault(const QString& settingsFileName) {
    if (!settingsFileName.contains('.'))
        return "ERROR: No \"vco\" extension found in settings file name";
    if (!splitName(settingsFileName))
        return "ERROR: No \"-\" character found separating the run number (name should be "
               "\"<basename>-<nr>.vco\".";
    return {};
}
