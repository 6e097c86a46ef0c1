// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/session/settings_file_names.h"

#include <limits>
#include <optional>

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

QString recordingNameFault(const QString& settingsFileName) {
    if (!settingsFileName.contains('.'))
        return "ERROR: No \"vco\" extension found in settings file name";
    if (!splitName(settingsFileName))
        return "ERROR: No \"-\" character found separating the run number (name should be "
               "\"<basename>-<nr>.vco\".";
    return {};
}
