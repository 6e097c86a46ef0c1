// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/settings/master_file.h"

#include "base/file_writing.h"
#include "base/messages.h"
#include "base/paths.h"
#include "base/program_end.h"
#include "base/text_reading.h"
#include "base/token_check.h"

#include <QFileInfo>

namespace {

/// Reads the values of one file in order. Stops at the first failure.
class MasterFileReader {
public:
    MasterFileReader(const QString& text, const QString& filePath)
        : stream_(text), filePath_(filePath), checker_(filePath, {}) {}

    [[nodiscard]] bool key(const char* expected) {
        return checker_.checkToken(stream_.word(), expected, CheckMode::Fatal);
    }
    [[nodiscard]] bool folderKey() {
        const QString found = stream_.word();
        return checker_.checkToken(found, "VCOWatchDirectory:", CheckMode::Silent) ||
               checker_.checkToken(found, "VCOSettingsDirectory:", CheckMode::Fatal);
    }
    [[nodiscard]] bool quoted(QString& value) {
        return readDelimitedString('"', value, stream_) || broken();
    }
    [[nodiscard]] bool number(int& value) {
        value = stream_.integer();
        return !stream_.failed() || broken();
    }
    [[nodiscard]] bool flag(bool& value) {
        int number = 0;
        if (!this->number(number))
            return false;
        value = number != 0;
        return true;
    }
    /// An entry that a file may have as its last.
    [[nodiscard]] bool optionalFlag(const char* key, bool& value) {
        return !checker_.checkToken(stream_.word(), key, CheckMode::Silent) || flag(value);
    }
    /// A number, or a word that begins with "C" (centred) or "A" (automatic).
    [[nodiscard]] bool position(bool& centred, int& value) {
        const QString word = stream_.word();
        if (word.isEmpty())
            return broken();
        centred =
            word.startsWith('C', Qt::CaseInsensitive) || word.startsWith('A', Qt::CaseInsensitive);
        if (!centred)
            value = TokenStream(word).integer();
        return true;
    }

private:
    [[nodiscard]] bool broken() const {
        showCritical(QStringLiteral("ERROR: A value is missing or is not a number in settings "
                                    "file: \"%1\" !\n")
                         .arg(filePath_));
        endProgram(1);
        return false;
    }

    TokenStream stream_;
    QString filePath_;
    TokenChecker checker_;
};

QString line(const char* key, const QString& value) {
    return QString(key).leftJustified(27) + value + '\n';
}

// True when the value can be read back unchanged. A file with another value could end the program
// at each start.
bool canBeQuoted(const QString& value) {
    return value.size() < maximumQuotedLength && value == value.simplified() &&
           !value.contains('"') && !value.contains(" ;");
}

QString positionText(bool centred, int value) {
    return centred ? QStringLiteral("Centered") : QString::number(value);
}

} // namespace

bool parseMasterFile(const QString& text, const QString& filePath, MasterFile& master) {
    MasterFileReader reader(text, filePath);
    MasterFile found;
    int version = 0;
    if (!reader.key("FileVersion:") || !reader.number(version) || !reader.folderKey() ||
        !reader.quoted(found.settingsDirectory) || !reader.key("VCOSettingsFile:") ||
        !reader.quoted(found.settingsFileName) || !reader.key("AutoAdvanceRun:") ||
        !reader.flag(found.autoAdvanceRun) || !reader.key("AutoStartVCO:") ||
        !reader.flag(found.autoStartRun))
        return false;
    if (version >= 2 && (!reader.key("WindowSize:") || !reader.number(found.windowSize)))
        return false;
    if (found.windowSize != 1)
        found.windowSize = 2;
    if (!reader.key("HorizontalWindowPosition:") ||
        !reader.position(found.windowCentredX, found.windowX) ||
        !reader.key("VerticalWindowPosition:") ||
        !reader.position(found.windowCentredY, found.windowY) ||
        !reader.optionalFlag("KeepRunJournals:", found.keepsJournals))
        return false;
    found.settingsDirectory =
        paths::withTrailingSlash(paths::withForwardSlashes(found.settingsDirectory));
    master = found;
    return true;
}

QString masterFileText(const MasterFile& master) {
    const auto quoted = [](const QString& value) { return '"' + value + '"'; };
    return '\n' + line("FileVersion:", "2") + '\n' +
           line("VCOSettingsDirectory:", quoted(master.settingsDirectory)) +
           line("VCOSettingsFile:", quoted(master.settingsFileName)) + '\n' +
           line("AutoAdvanceRun:", QString::number(int(master.autoAdvanceRun))) +
           line("AutoStartVCO:", QString::number(int(master.autoStartRun))) + '\n' +
           line("WindowSize:", QString::number(master.windowSize)) + '\n' +
           line("HorizontalWindowPosition:", positionText(master.windowCentredX, master.windowX)) +
           line("VerticalWindowPosition:", positionText(master.windowCentredY, master.windowY)) +
           (master.keepsJournals ? '\n' + line("KeepRunJournals:", "1") : QString());
}

MasterFileResult readMasterFile(const QString& folder, const QString& dataPath,
                                MasterFile& master) {
    const QString path = paths::join(folder, masterFileName);
    if (!QFileInfo::exists(path)) {
        MasterFile first;
        first.settingsDirectory = paths::withTrailingSlash(paths::join(dataPath, sampleFolderName));
        first.settingsFileName = sampleSettingsName;
        master = first;
        return writeMasterFile(folder, master) ? MasterFileResult::Created
                                               : MasterFileResult::Failed;
    }
    QString text;
    if (!QFileInfo(path).isFile() || !removeComments(path, ';', text)) {
        showCritical(
            QStringLiteral("ERROR: \"MasterVCO\" file not found in folder: \"%1\"!").arg(folder));
        return MasterFileResult::Missing;
    }
    return parseMasterFile(text, path, master) ? MasterFileResult::Read : MasterFileResult::Failed;
}

bool writeMasterFile(const QString& folder, const MasterFile& master) {
    if (canBeQuoted(master.settingsDirectory) && canBeQuoted(master.settingsFileName) &&
        writeFileAtomically(paths::join(folder, masterFileName), masterFileText(master).toUtf8()))
        return true;
    showCritical("ERROR: Can not update \"MasterVCO\" file !");
    return false;
}
