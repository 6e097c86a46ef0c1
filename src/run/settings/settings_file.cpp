// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/settings/settings_file.h"

#include "base/file_writing.h"
#include "base/messages.h"
#include "base/paths.h"
#include "base/standard_folders.h"
#include "base/text_reading.h"
#include "run/settings/settings_paths.h"
#include "run/settings/settings_reader.h"

namespace {

constexpr QChar commentCharacter = ';';
constexpr QChar quote = '"';

QString fileNotFoundText(const QString& path) {
    return QStringLiteral("ERROR: \"%1\" file not found!").arg(path);
}

// The quoted value after the next occurrence of this key.
bool findQuoted(TokenStream& stream, const char* key, QString& value) {
    while (!stream.atEnd())
        if (tokensAgree(stream.word(), key))
            return readDelimitedString(quote, value, stream);
    return false;
}

// A settings file that another one lists.
QString listedSettingsFile(const QString& name, const QString& currentSettingsDir) {
    const QString path = paths::withDefaultExtension(cleanedPath(name, currentSettingsDir), "vco");
    return path.contains('/') ? path : paths::join(currentSettingsDir, path);
}

void beginReading(RunSettings& settings) {
    settings.settingsFileDir =
        paths::folderWithSlash(paths::withForwardSlashes(settings.settingsFilePath));
    settings.settingsRead = false;
    settings.forceTRDelayRead = false;
}

} // namespace

RunSettings defaultRunSettings() {
    RunSettings settings;
    settings.OverlayInplaneFolder = standardFolders().homePath;
    return settings;
}

void applyDataTypeDefaults(RunSettings& settings, const QString& dataType) {
    const QString type = dataType.toUpper();
    settings.DataType = dataType;
    settings.DicomNameDelimiter = type == "SIEMENS_DICOM_MOSAIC" ? "_" : "-";
    if (type == "PHILIPS_REC" || type == "PHILIPSRECDATA")
        settings.FirstFileName = "untitled.rec";
    else if (type == "PHILIPS_ANALYZE_DRIN" || type == "ANALYZE_NW")
        settings.FirstFileName = "untitled.img";
    else if (type == "SIEMENS_DICOM_MOSAIC")
        settings.FirstFileName = "001_000004_000001.dcm";
    else
        settings.FirstFileName.clear();
}

QString unsupportedDataTypeText(const QString& dataType, const QString& settingsFilePath) {
    return QStringLiteral("ERROR: Data type \"%1\" not supported!\n\nCheck settings file: \"%2\".")
        .arg(shortened(dataType), settingsFilePath);
}

bool readSettingsFile(RunSettings& settings, SettingsUse use,
                      const std::function<void()>& stopTimer) {
    beginReading(settings);
    QString text;
    if (!readTextFile(settings.settingsFilePath, text))
        return SettingsReport(settings.settingsFilePath, use, stopTimer)
            .fail(fileNotFoundText(settings.settingsFilePath));
    return readSettingsText(settings, text, use, stopTimer);
}

bool readSettingsText(RunSettings& settings, const QString& text, SettingsUse use,
                      const std::function<void()>& stopTimer) {
    beginReading(settings);
    const SettingsReport report(settings.settingsFilePath, use, stopTimer);
    const QString content = withoutComments(text, commentCharacter);
    if (content.isEmpty()) {
        report.warn(QStringLiteral("ERROR - No content in file \"%1\" found!")
                        .arg(settings.settingsFilePath));
        return false;
    }
    settings.settingsRead = SettingsReader(settings, report, content).read();
    return settings.settingsRead;
}

bool writeSettingsFile(RunSettings& settings) {
    const QString path = settings.settingsFilePath;
    const WrittenSettings written = settingsText(settings);
    if (!writeFileAtomically(path, written.text.toUtf8())) {
        showWarning(
            QStringLiteral("WARNING: Can not open VCO settings file for writing: %1").arg(path));
        return false;
    }
    if (!written.dataTypeSupported)
        showCritical(unsupportedDataTypeText(settings.DataType, path));
    return written.dataTypeSupported;
}

bool describesSeveralRuns(const QString& settingsFilePath) {
    QString text;
    if (!removeComments(settingsFilePath, commentCharacter, text))
        return false;
    TokenStream stream(text);
    while (!stream.atEnd())
        if (tokensAgree(stream.word(), "MergeType:"))
            return stream.integer() >= 1;
    return false;
}

QString resolveProjectPath(const QString& vcoFileName, const QString& currentSettingsDir) {
    const QString path = listedSettingsFile(vcoFileName, currentSettingsDir);
    QString text;
    if (!removeComments(path, commentCharacter, text)) {
        showWarning(fileNotFoundText(path));
        return {};
    }
    TokenStream stream(text);
    QString folder;
    QString name;
    if (!findQuoted(stream, "TargetFolder:", folder) || !findQuoted(stream, "ProjectName:", name))
        return {};
    name = paths::withForwardSlashes(name);
    if (name.contains('/'))
        return name;
    return paths::join(cleanedFolder(folder, paths::folderWithSlash(path)), name);
}

QString statedProtocol(const QString& vcoFileName, const QString& currentSettingsDir) {
    const QString path = listedSettingsFile(vcoFileName, currentSettingsDir);
    QString text;
    if (!removeComments(path, commentCharacter, text))
        return {};
    TokenStream stream(text);
    QString protocol;
    return findQuoted(stream, "StimulationProtocol:", protocol)
               ? cleanedPath(protocol, paths::folderWithSlash(path))
               : QString();
}
