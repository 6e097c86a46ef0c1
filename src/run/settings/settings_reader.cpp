// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/settings/settings_reader.h"

#include "run/settings/settings_paths.h"
#include "run/settings/watch_folders.h"

#include <limits>

namespace {

constexpr QChar quote = '"';
const QString fileHasEnded = QStringLiteral("the file has ended");

QString badValueText(const QString& key, const QString& value) {
    return QStringLiteral("ERROR: Problem reading \"%1\" value (%2). Check respective entry in "
                          "settings file!")
        .arg(key.chopped(1), value);
}

bool flagValue(ValueKind kind, int value) {
    switch (kind) {
    case ValueKind::FlagOne:
        return value == 1;
    case ValueKind::FlagPositive:
        return value >= 1;
    default:
        return value != 0;
    }
}

float asFloat(double value) {
    constexpr double largest = std::numeric_limits<float>::max();
    return float(std::clamp(value, -largest, largest));
}

} // namespace

bool SettingsReader::read() {
    for (const SettingsField& field : settingsFields())
        if (field.applies(settings_) && !readField(field))
            return false;
    // Files of the first version have no such entry.
    if (settings_.FileVersion < 2 && !settings_.MergeType)
        settings_.FeedbackTargetFolder = settings_.TargetFolder;
    return true;
}

bool SettingsReader::readField(const SettingsField& field) {
    if (field.presence == Presence::OptionalAtEnd && stream_.atEnd()) {
        setToDefault(field);
        return applyEffect(field.effect);
    }
    if (field.presence == Presence::Extension && !nextKeyIs(field.key)) {
        setToDefault(field);
        return true;
    }
    switch (field.kind) {
    case ValueKind::None:
        return applyEffect(field.effect);
    case ValueKind::WatchFolder:
        return readWatchFolder(field);
    case ValueKind::Protocol:
        return readProtocol();
    case ValueKind::MergeFiles:
        return readMergeFiles(field);
    default:
        return field.presence == Presence::SkipsOtherKey ? readOrSkipOtherKey(field)
                                                         : readKeyAndValue(field);
    }
}

bool SettingsReader::nextKeyIs(const QString& key) {
    if (stream_.atEnd())
        return false;
    const qsizetype start = stream_.position();
    const bool same = tokensAgree(stream_.word(), key);
    stream_.seek(start);
    return same;
}

bool SettingsReader::readKeyAndValue(const SettingsField& field) {
    const QString found = stream_.word();
    const QString problem = takeValue(field);
    if (!report_.keyFits(found, field.key))
        return false;
    if (!problem.isEmpty())
        return report_.fail(badValueText(field.key, problem));
    cleanValue(field);
    return applyEffect(field.effect) && checkRange(field);
}

bool SettingsReader::readOrSkipOtherKey(const SettingsField& field) {
    const QString found = stream_.word();
    QString value;
    const bool valueIsThere = readDelimitedString(quote, value, stream_);
    if (!tokensAgree(found, field.key))
        return true;
    settings_.*std::get<QString RunSettings::*>(field.member) = value;
    cleanValue(field);
    return valueIsThere || reportMissing(field.key);
}

QString SettingsReader::takeValue(const SettingsField& field) {
    if (stream_.atEnd())
        return fileHasEnded;
    if (const auto* text = std::get_if<QString RunSettings::*>(&field.member)) {
        if (field.kind != ValueKind::Word)
            return readDelimitedString(quote, settings_.**text, stream_) ? QString() : fileHasEnded;
        settings_.** text = stream_.word();
        return {};
    }
    const QString word = stream_.word();
    TokenStream number(word);
    if (const auto* integer = std::get_if<int RunSettings::*>(&field.member))
        settings_.** integer = number.integer();
    else if (const auto* flag = std::get_if<bool RunSettings::*>(&field.member))
        settings_.** flag = flagValue(field.kind, number.integer());
    else if (const auto* real = std::get_if<float RunSettings::*>(&field.member))
        settings_.** real = asFloat(number.real());
    return number.failed() && !field.refusesZero ? shortened(word) : QString();
}

void SettingsReader::setToDefault(const SettingsField& field) {
    const auto reset = [this](auto member) {
        if constexpr (!std::is_same_v<decltype(member), std::monostate>)
            settings_.*member = RunSettings().*member;
    };
    std::visit(reset, field.member);
}

void SettingsReader::cleanValue(const SettingsField& field) {
    if (field.kind != ValueKind::Path && field.kind != ValueKind::Folder)
        return;
    QString& value = settings_.*std::get<QString RunSettings::*>(field.member);
    value = field.kind == ValueKind::Folder ? cleanedFolder(value, settings_.settingsFileDir)
                                            : cleanedPath(value, settings_.settingsFileDir);
}

bool SettingsReader::checkRange(const SettingsField& field) {
    if (!field.range)
        return true;
    double value = 0.0;
    if (const auto* integer = std::get_if<int RunSettings::*>(&field.member))
        value = settings_.**integer;
    else if (const auto* real = std::get_if<float RunSettings::*>(&field.member))
        value = double(settings_.**real);
    if (value >= field.range->lowest && value <= field.range->highest)
        return true;
    return report_.refuseForRun(badValueText(field.key, QString::number(value, 'g', 10)));
}

bool SettingsReader::reportMissing(const QString& key) {
    return report_.fail(badValueText(key, fileHasEnded));
}

bool SettingsReader::readWatchFolder(const SettingsField& field) {
    const QString found = stream_.word();
    settings_.WatchFolderListFile.clear();
    settings_.watchFolderList.clear();
    settings_.watchFolderCount = 0;
    if (tokensAgree(found, "WATCHFOLDERLIST:"))
        return readWatchFolderList();
    const bool valueIsThere = readDelimitedString(quote, settings_.WatchFolder, stream_);
    if (!report_.keyFits(found, field.key))
        return false;
    settings_.WatchFolder = cleanedFolder(settings_.WatchFolder, settings_.settingsFileDir);
    if (report_.forRun())
        settings_.WatchFolder = resolvedSeriesFolder(settings_.WatchFolder);
    return valueIsThere || reportMissing(field.key);
}

bool SettingsReader::readWatchFolderList() {
    QString value;
    const bool valueIsThere = readDelimitedString(quote, value, stream_);
    // The image reader chooses the folder when the first file arrives.
    settings_.WatchFolder.clear();
    settings_.WatchFolderListFile = cleanedPath(value, settings_.settingsFileDir);
    if (valueIsThere && report_.forRecorded())
        return true;
    QString text;
    if (!valueIsThere || !readTextFile(settings_.WatchFolderListFile, text))
        return SettingsReport::failFatally(
            "ERROR: Can not open watch folder list file.\nCheck VCO file.");
    if (!report_.forRun())
        return true;
    const WatchFolderList list = parseWatchFolderList(text, settings_.settingsFileDir);
    settings_.watchFolderList = list.folders;
    settings_.watchFolderCount = list.count;
    return !list.folders.isEmpty() ||
           SettingsReport::failFatally(
               "ERROR: Can not find directories in watch folder list file.");
}

bool SettingsReader::readProtocol() {
    const QString found = stream_.word();
    QString value;
    const bool valueIsThere = readDelimitedString(quote, value, stream_);
    const std::pair<const char*, QString RunSettings::*> sources[] = {
        {"TDatFile:", &RunSettings::TDatFile},
        {"StimulationProtocol:", &RunSettings::StimulationProtocol},
        {"RealTimeProtocol:", &RunSettings::RealTimeProtocol}};
    for (const auto& [key, member] : sources) {
        if (!tokensAgree(found, key))
            continue;
        for (const auto& source : sources)
            (settings_.*source.second).clear();
        settings_.*member = cleanedPath(value, settings_.settingsFileDir);
        return valueIsThere || reportMissing(key);
    }
    return report_.refuseForRun(
        QStringLiteral("ERROR: Expected \"StimulationProtocol:\" or \"RealTimeProtocol:\" or "
                       "\"TDatFile:\" token but found \"%1\".\nCheck entry name and order of "
                       "entries in settings file!")
            .arg(shortened(found)));
}

QString SettingsReader::upcomingWord() const {
    TokenStream ahead = stream_;
    return ahead.word();
}

// Programs that know none of the keys behind the names read on to the end for another quote.
bool SettingsReader::readMergeFiles(const SettingsField& field) {
    settings_.MergeFiles.clear();
    if (!report_.keyFits(stream_.word(), field.key))
        return false;
    QString name;
    while (upcomingWord().startsWith(quote) && readDelimitedStringInLine(quote, name, stream_))
        settings_.MergeFiles << name;
    return readMergeOptions();
}

bool SettingsReader::readMergeOptions() {
    const char* const keys[] = {"MergeZTransformation:", "MergeSubjects:",
                                "MergeCorrectSerialCorrelations:", "MergeDriftConfoundPredictors:"};
    constexpr int mostDriftTerms = 40; // of a run
    settings_.MergeZTransformation = 0;
    settings_.MergeDriftConfoundPredictors = 0;
    settings_.MergeSubjects.clear();
    int correction = 0;
    bool fits = true;
    if (tokensAgree(upcomingWord(), keys[0]))
        fits = readMergeOption(keys[0], 0, 2, settings_.MergeZTransformation);
    if (fits && tokensAgree(upcomingWord(), keys[1]))
        fits = readMergeSubjects();
    if (fits && tokensAgree(upcomingWord(), keys[2]))
        fits = readMergeOption(keys[2], 0, 1, correction);
    settings_.MergeCorrectSerialCorrelations = correction != 0;
    if (fits && tokensAgree(upcomingWord(), keys[3]))
        fits = readMergeOption(keys[3], 0, mostDriftTerms, settings_.MergeDriftConfoundPredictors);
    return fits && (stream_.atEnd() || report_.keyFits(stream_.word(), keys[3]));
}

bool SettingsReader::readMergeOption(const QString& key, int lowest, int highest, int& value) {
    stream_.word();
    const QString word = stream_.word();
    TokenStream number(word);
    const int read = number.integer();
    if (number.failed() || read < lowest || read > highest)
        return report_.fail(badValueText(key, word.isEmpty() ? fileHasEnded : shortened(word)));
    value = read;
    return true;
}

// A number for each run: with one too few or too many it would be a guess whose run is whose.
bool SettingsReader::readMergeSubjects() {
    stream_.word();
    std::vector<int> subjects;
    while (true) {
        TokenStream number(upcomingWord());
        const int subject = number.integer();
        if (number.failed())
            break;
        if (subject < 1)
            return report_.fail(badValueText("MergeSubjects:", shortened(stream_.word())));
        subjects.push_back(subject);
        stream_.word();
    }
    if (qsizetype(subjects.size()) != settings_.MergeFiles.size())
        return report_.fail(QStringLiteral("ERROR: \"MergeSubjects\" states %1 subjects for %2 "
                                           "runs. Give one number for each name in \"MergeFiles\", "
                                           "or leave the entry out!")
                                .arg(subjects.size())
                                .arg(settings_.MergeFiles.size()));
    settings_.MergeSubjects = std::move(subjects);
    return true;
}
